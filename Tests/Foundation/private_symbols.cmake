# Checks the soname of a shared library, and that it exports no private symbols.
#   cmake -DLIBRARY=file -DNM=command -DOBJDUMP=command -DSONAME=name -P private_symbols.cmake
execute_process(COMMAND ${OBJDUMP} -p "${LIBRARY}" OUTPUT_VARIABLE head RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT head MATCHES "SONAME +${SONAME}\n")
  message(SEND_ERROR "${LIBRARY} is not called ${SONAME}")
endif()
execute_process(COMMAND ${NM} -DC --defined-only "${LIBRARY}" OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT symbols MATCHES " [TBDR] ")
  message(FATAL_ERROR "cannot list the symbols of ${LIBRARY}")
endif()
string(REPLACE ";" "," symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
foreach(symbol IN LISTS symbols)
  if(symbol MATCHES "PrivateImpl::|RepeatDelayFunction::State|Platform::|_Impl\\(|AllocationFaults|SystemCalls|Algorithm<"
     OR symbol MATCHES " [TBDR] (boost|Relacy|U_ICU|io_uring)" OR symbol MATCHES "ORL::(AsyncFiles|MemoryRegions|PageMemory|Sync|Events)::")
    message(SEND_ERROR "exported: ${symbol}")
  endif()
endforeach()
