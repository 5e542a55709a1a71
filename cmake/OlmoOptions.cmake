# Compiler settings for Olmo's own code: C++20, warnings as errors, hidden
# symbols, position-independent objects (the subsystems are object
# libraries folded into shared libraries), and the sanitizer switch.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(OLMO_CCACHE ccache)
if(OLMO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER ${OLMO_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${OLMO_CCACHE})
endif()

set(OLMO_SANITIZE "" CACHE STRING "Sanitizers: empty, 'address' (ASan+UBSan) or 'thread' (TSan)")
set(OLMO_SANITIZE_FLAGS "")
if(OLMO_SANITIZE STREQUAL "address")
    set(OLMO_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
elseif(OLMO_SANITIZE STREQUAL "thread")
    set(OLMO_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT OLMO_SANITIZE STREQUAL "")
    message(FATAL_ERROR "OLMO_SANITIZE must be empty, 'address' or 'thread'")
endif()
if(OLMO_SANITIZE_FLAGS)
    add_compile_options(${OLMO_SANITIZE_FLAGS})
    add_link_options(${OLMO_SANITIZE_FLAGS})
endif()

# Warnings apply to our own targets only (not to GoogleTest or X headers,
# which are system includes).
add_library(olmo_warnings INTERFACE)
target_compile_options(olmo_warnings INTERFACE
    -Wall -Wextra -Werror -Wno-missing-field-initializers
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)

# Definitions every internal translation unit shares: Xt's String is
# const char*, and min/max stay the standard library's.
add_library(olmo_internal INTERFACE)
target_compile_definitions(olmo_internal INTERFACE _CONST_X_STRING NOMINMAX _GNU_SOURCE
    OLMO_VERSION_STRING="${PROJECT_VERSION}")
target_link_libraries(olmo_internal INTERFACE olmo_warnings olmo_headers)

# olmo_add_subsystem(name SOURCES ... USES ...): one user-library subsystem
# as an object library.  Its headers for other subsystems live in
# <name>/include/<name>/; everything else in <name>/ is private to it.
function(olmo_add_subsystem name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_library(om_${name} OBJECT ${ARG_SOURCES})
    target_include_directories(om_${name}
        PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include
        PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(om_${name} PUBLIC ${ARG_USES} PRIVATE olmo_internal)
    target_compile_definitions(om_${name} PRIVATE OLMO_BUILDING_USER)
endfunction()

# olmo_generate_placeholders(<target> HEADERS ...): adds to <target> the
# registered placeholders of every function those headers declare that no
# source of the tree defines yet (tools/gen_placeholders.py).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
function(olmo_generate_placeholders target)
    cmake_parse_arguments(ARG "" "" "HEADERS" ${ARGN})
    file(GLOB_RECURSE all_sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/kernel/*.cpp ${PROJECT_SOURCE_DIR}/graphics/*.cpp
        ${PROJECT_SOURCE_DIR}/widgets/*.cpp ${PROJECT_SOURCE_DIR}/core/*.cpp
        ${PROJECT_SOURCE_DIR}/messages/*.cpp ${PROJECT_SOURCE_DIR}/winmgmt/*.cpp
        ${PROJECT_SOURCE_DIR}/dialogs/*.cpp ${PROJECT_SOURCE_DIR}/menus/*.cpp
        ${PROJECT_SOURCE_DIR}/controls/*.cpp)
    set(headers)
    foreach(h IN LISTS ARG_HEADERS)
        list(APPEND headers ${PROJECT_SOURCE_DIR}/include/${h})
    endforeach()
    set(out ${CMAKE_CURRENT_BINARY_DIR}/${target}_placeholders.cpp)
    add_custom_command(OUTPUT ${out}
        COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/gen_placeholders.py ${out}
                --headers ${headers} --sources ${all_sources}
        DEPENDS ${PROJECT_SOURCE_DIR}/tools/gen_placeholders.py ${headers} ${all_sources}
        COMMENT "Placeholders of ${target}" VERBATIM)
    target_sources(${target} PRIVATE ${out})
endfunction()

# A shared library of ours must not leave a symbol for the program to
# supply: an undefined reference would pass the link and fail at run time.
if(NOT OLMO_SANITIZE)
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:--no-undefined>)
endif()
