# Checks that the HTML reference is complete, and that a public member without a comment is reported.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME Docs.ReferenceHasNoWarning COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/docs"
    --output "${CMAKE_BINARY_DIR}/docs")
  add_test(NAME Docs.UndocumentedMembersAreFound COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/docs_test.py"
    "${PROJECT_SOURCE_DIR}/Scripts/docs")
  set_tests_properties(Docs.ReferenceHasNoWarning Docs.UndocumentedMembersAreFound PROPERTIES TIMEOUT 300)
endif()
