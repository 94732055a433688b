# Checks that each library exports no private symbols, and that its soname contains the ABI number.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  foreach(library tvxmediatypes tvxcore CRV ORLFoundation)
    add_test(NAME Package.${library}.ExportsNothingPrivate
      COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:${library}> -DNM=${CMAKE_NM} -DOBJDUMP=${CMAKE_OBJDUMP}
              -DSONAME=lib${library}.so.${ORL_ABI} -P ${CMAKE_CURRENT_SOURCE_DIR}/Foundation/private_symbols.cmake)
    set_tests_properties(Package.${library}.ExportsNothingPrivate PROPERTIES TIMEOUT 60)
  endforeach()
endif()

# Every symbol that a library exports is declared in its public headers and, on Linux, has the library's version. None
# is from the standard library or Boost, except the facets that tvxcore adds to the standard library.
if(NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  foreach(library tvxmediatypes tvxcore CRV ORLFoundation)
    set(headers "${PROJECT_SOURCE_DIR}/${library}/Inc")
    if(library STREQUAL "ORLFoundation")
      set(headers "${PROJECT_SOURCE_DIR}/API/Inc")
    endif()
    set(check elf "$<TARGET_FILE:${library}>" "lib${library}.so.${ORL_ABI}" "${headers}")
    if(WIN32)
      set(check pe "$<TARGET_FILE:${library}>" "lib${library}-${ORL_ABI}.dll" "${headers}")
    endif()
    add_test(NAME Package.${library}.ExportsOnlyWhatItsHeadersDeclare
      COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/check_exports.py" ${check})
    set_tests_properties(Package.${library}.ExportsOnlyWhatItsHeadersDeclare PROPERTIES TIMEOUT 60)
  endforeach()
endif()

# A host exports no library symbol that it compiles itself, except compile-time constants: the loader would bind a
# plug-in to the host's copy.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  foreach(level 0 2)
    add_test(NAME Package.HostsRepeatNoSymbolOfTheLibraries.O${level}
      COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/check_exports.py" host $<TARGET_FILE:every_class_O${level}>)
    set_tests_properties(Package.HostsRepeatNoSymbolOfTheLibraries.O${level} PROPERTIES TIMEOUT 60)
  endforeach()
endif()

# Compares the ABI with the stored one. GCC with debug information only: other builds describe the ABI differently.
if(NOT WIN32 AND NOT ORL_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  add_test(NAME Package.AbiIsTheStoredOne COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/check_abi.py"
    "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  add_test(NAME Package.ChangedAbisAreFound
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/abi_test.py" "${PROJECT_SOURCE_DIR}/Scripts")
  set_tests_properties(Package.AbiIsTheStoredOne Package.ChangedAbisAreFound PROPERTIES TIMEOUT 300)
endif()
