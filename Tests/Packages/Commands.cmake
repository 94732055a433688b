# run(command...) runs a command and sets the variables output and errors to its streams. Fails if the command fails.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}${errors}")
  endif()
  string(REPLACE "\r" "" output "${output}")
  set(output "${output}" PARENT_SCOPE)
  set(errors "${errors}" PARENT_SCOPE)
endfunction()

# expect_output(expected what) fails unless the output of the last run() equals expected.
function(expect_output expected what)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${what} printed [${output}], not [${expected}]")
  endif()
endfunction()
