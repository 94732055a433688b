# run(command...) runs a command and returns its output and its errors in these variables. Fails if the command does.
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

# expect_output(expected what) compares the output of the last run.
function(expect_output expected what)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${what} printed [${output}], not [${expected}]")
  endif()
endfunction()
