# Runs EXAMPLE in a LAB of two boards; its exit status must be 0 and its output that of the file EXPECTED.
execute_process(COMMAND ${LAB} --boards 2 -- ${EXAMPLE}
  RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE diagnostics)
file(READ ${EXPECTED} expected)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "exit status ${status}\n${output}${diagnostics}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "printed\n${output}instead of\n${expected}and said\n${diagnostics}")
endif()
