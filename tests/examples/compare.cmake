# Runs PROGRAM, which must succeed and print exactly what is in the file EXPECTED.
execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
file(READ "${EXPECTED}" expected)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${printed}instead of\n${expected}")
endif()
