# Preprocesses <windows.h> as a resource compiler does and fails when any
# C declaration remains.
execute_process(
    COMMAND ${CC} -E -P -DRC_INVOKED -I${INCLUDE} -x c -
    INPUT_FILE ${INCLUDE}/windows.h
    OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "preprocessing failed: ${err}")
endif()
string(STRIP "${out}" stripped)
if(NOT stripped STREQUAL "")
    string(SUBSTRING "${stripped}" 0 400 head)
    message(FATAL_ERROR "declarations visible to a resource script:\n${head}")
endif()
message(STATUS "windows.h under RC_INVOKED leaves constants only")
