# A program that reads asynchronously must complete under valgrind, which blocks all threads while one waits in
# io_uring.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_program(ORL_VALGRIND valgrind REQUIRED)
  add_test(NAME Files.AsyncReads.UnderValgrindGoByThreads
    COMMAND ${ORL_VALGRIND} --tool=none -q $<TARGET_FILE:reading_host> "${CMAKE_CURRENT_LIST_FILE}")
  set_tests_properties(Files.AsyncReads.UnderValgrindGoByThreads PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT}
    PASS_REGULAR_EXPRESSION "since the program runs under valgrind.*result 0, [1-9][0-9]* bytes")
endif()
