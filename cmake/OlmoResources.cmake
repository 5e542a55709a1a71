# olmo_add_resources(<target> <script.rc>... [INCLUDE_DIRECTORIES <dir>...]
#                    [DEFINITIONS <name[=value]>...])
#
# Compiles each Windows resource script at build time (tools/olmo-rc: the C
# preprocessor with RC_INVOKED and Olmo's headers, then windres or llvm-rc)
# into a C file that embeds the .res image and registers it at start-up,
# and adds that file to <target>: a program, or a shared library whose
# resources LoadLibraryA makes available.  Include directories of the
# target are searched too.  Works in the source tree and installed beside
# OlmoConfig.cmake, in projects that enable only C (or only C++).
include_guard(GLOBAL)

# olmo-rc lies in tools/ beside this file's cmake/ in the source tree, and
# in bin/ of the prefix when installed under <libdir>/cmake/Olmo.
find_program(OLMO_RC_SCRIPT olmo-rc
    HINTS ${CMAKE_CURRENT_LIST_DIR}/../tools
          ${CMAKE_CURRENT_LIST_DIR}/../../../bin
          ${CMAKE_CURRENT_LIST_DIR}/../../../../bin
    NO_DEFAULT_PATH)
if(NOT OLMO_RC_SCRIPT)
    message(FATAL_ERROR "olmo_add_resources: cannot find olmo-rc near ${CMAKE_CURRENT_LIST_DIR}")
endif()

function(olmo_add_resources target)
    cmake_parse_arguments(ARG "" "" "INCLUDE_DIRECTORIES;DEFINITIONS" ${ARGN})
    if(NOT TARGET ${target})
        message(FATAL_ERROR "olmo_add_resources: ${target} is not a target")
    endif()
    if(NOT ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "olmo_add_resources: no resource script given for ${target}")
    endif()

    # The preprocessor: the C compiler, else the C++ one (told -x c).
    get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
    if("C" IN_LIST languages)
        set(cc ${CMAKE_C_COMPILER})
        set(language C)
    elseif("CXX" IN_LIST languages)
        set(cc ${CMAKE_CXX_COMPILER})
        set(language CXX)
    else()
        message(FATAL_ERROR "olmo_add_resources: enable C or CXX in the project")
    endif()

    set(options)
    foreach(dir IN LISTS ARG_INCLUDE_DIRECTORIES)
        get_filename_component(dir ${dir} ABSOLUTE)
        list(APPEND options -I ${dir})
    endforeach()
    foreach(def IN LISTS ARG_DEFINITIONS)
        list(APPEND options -D${def})
    endforeach()
    set(target_includes "$<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>")
    list(APPEND options
        "$<$<BOOL:${target_includes}>:-I$<JOIN:${target_includes},$<SEMICOLON>-I>>")

    set(depfile_supported FALSE)
    if(CMAKE_GENERATOR MATCHES "Ninja" OR CMAKE_VERSION VERSION_GREATER_EQUAL 3.20)
        set(depfile_supported TRUE)
        if(POLICY CMP0116)
            cmake_policy(SET CMP0116 NEW)
        endif()
    endif()

    foreach(script IN LISTS ARG_UNPARSED_ARGUMENTS)
        get_filename_component(script ${script} ABSOLUTE)
        get_filename_component(name ${script} NAME_WE)
        set(dir ${CMAKE_CURRENT_BINARY_DIR}/olmo_resources/${target})
        set(out ${dir}/${name}_res.c)
        set(depargs)
        set(depfile)
        if(depfile_supported)
            set(depargs --depfile ${out}.d)
            set(depfile DEPFILE ${out}.d)
        endif()
        add_custom_command(OUTPUT ${out} ${dir}/${name}.res
            COMMAND ${CMAKE_COMMAND} -E make_directory ${dir}
            COMMAND ${CMAKE_COMMAND} -E env CC=${cc}
                    sh ${OLMO_RC_SCRIPT} ${options} ${depargs}
                    --res ${dir}/${name}.res -o ${out} ${script}
            DEPENDS ${script} ${OLMO_RC_SCRIPT}
            ${depfile}
            COMMENT "Compiling resources ${name}.rc for ${target}"
            VERBATIM COMMAND_EXPAND_LISTS)
        set_source_files_properties(${out} PROPERTIES GENERATED TRUE LANGUAGE ${language})
        target_sources(${target} PRIVATE ${out})
    endforeach()
endfunction()
