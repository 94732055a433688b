# Checks the project rules that a script can check, and compiles each public header alone.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME House.IncludesRunDownwards COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/check_floors.py")
  set_tests_properties(House.IncludesRunDownwards PROPERTIES TIMEOUT 60)
  add_test(NAME House.UpwardIncludesAreFound COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/floors_test.py"
    "${PROJECT_SOURCE_DIR}/Scripts/check_floors.py")
  set_tests_properties(House.UpwardIncludesAreFound PROPERTIES TIMEOUT 60)
  add_test(NAME House.LockedVariablesAreAccessedUnderTheirLocks COMMAND Python3::Interpreter
    "${PROJECT_SOURCE_DIR}/Scripts/check_thread_safety.py" "${CMAKE_BINARY_DIR}")
  add_test(NAME House.MissingLocksAreFound COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/thread_safety_test.py"
    "${PROJECT_SOURCE_DIR}/Scripts/check_thread_safety.py" "${PROJECT_SOURCE_DIR}/API/Inc" "${PROJECT_SOURCE_DIR}/tvxcore/Inc")
  set_tests_properties(House.LockedVariablesAreAccessedUnderTheirLocks House.MissingLocksAreFound PROPERTIES TIMEOUT 600)
  foreach(compiler g++ clang++)
    foreach(standard c++17 c++20)
      set(name "House.HeadersCompileAlone.${compiler}.${standard}")
      add_test(NAME ${name} COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/check_headers.py"
        ${compiler} ${standard} "${CMAKE_BINARY_DIR}/include")
      set_tests_properties(${name} PROPERTIES TIMEOUT 600)
    endforeach()
    set(name "House.HeadersCompileAlone.${compiler}.WithoutExceptions")
    add_test(NAME ${name} COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/check_headers.py"
      ${compiler} c++17 "${CMAKE_BINARY_DIR}/include" --without-exceptions)
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
    add_test(NAME House.ExamplesInHeadersCompile.${compiler} COMMAND Python3::Interpreter
      "${CMAKE_CURRENT_SOURCE_DIR}/HeaderExamples/check_examples.py" ${compiler} "${CMAKE_BINARY_DIR}/include")
    add_test(NAME House.CodeInDocumentsRuns.${compiler} COMMAND Python3::Interpreter
      "${CMAKE_CURRENT_SOURCE_DIR}/HeaderExamples/check_documents.py" ${compiler} "${CMAKE_BINARY_DIR}")
    add_test(NAME House.MisuseDoesNotCompile.${compiler} COMMAND Python3::Interpreter
      "${CMAKE_CURRENT_SOURCE_DIR}/Misuse/check_misuse.py" ${compiler} "${CMAKE_BINARY_DIR}/include")
    set_tests_properties(House.ExamplesInHeadersCompile.${compiler} House.MisuseDoesNotCompile.${compiler}
      House.CodeInDocumentsRuns.${compiler} PROPERTIES TIMEOUT 300)
  endforeach()
endif()
