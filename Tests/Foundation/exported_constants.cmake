# Checks that the shared library exports each constant of exported_constants.txt, and not the key that it keeps.
#   cmake -DLIBRARY=file -DNAMES=file -DTOOL=command -DOPTIONS=list -P exported_constants.cmake
separate_arguments(OPTIONS)
execute_process(COMMAND ${TOOL} ${OPTIONS} "${LIBRARY}" OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cannot list the symbols of ${LIBRARY}")
endif()
file(STRINGS "${NAMES}" names)
foreach(name IN LISTS names)
  string(LENGTH "${name}" length)
  # The standard library tags names of string objects.
  if(NOT symbols MATCHES "_ZN3ORL${length}${name}(B5cxx11)?E")
    message(SEND_ERROR "ORL::${name} is not exported")
  endif()
endforeach()
if(symbols MATCHES "kPropertyKey_WorkBarAdjusted")
  message(SEND_ERROR "ORL::kPropertyKey_WorkBarAdjusted is exported")
endif()
