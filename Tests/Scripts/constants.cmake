# Checks that the shared library exports the constants, not only that a header declares them.
if(WIN32)
  set(symbols_tool -DTOOL=${CMAKE_OBJDUMP} -DOPTIONS=-p)
else()
  set(symbols_tool -DTOOL=${CMAKE_NM} "-DOPTIONS=-D --defined-only")
endif()
add_test(NAME Foundation.Constants.AreExported
  COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:ORLFoundation>
          -DNAMES=${CMAKE_CURRENT_SOURCE_DIR}/Foundation/exported_constants.txt ${symbols_tool}
          -P ${CMAKE_CURRENT_SOURCE_DIR}/Foundation/exported_constants.cmake)
set_tests_properties(Foundation.Constants.AreExported PROPERTIES TIMEOUT 60)
