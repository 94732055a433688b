orl_test_folder(FailingCompletion)

# Separate hosts: one that reads, linked to the shared libraries as real hosts are, and one whose reads fail.
add_executable(reading_host AsyncReads/ReadingHost.cpp)
target_link_libraries(reading_host PRIVATE ORLFoundation orl_strict)
add_executable(failing_completion_host AsyncReads/FailingCompletion/FailingCompletionHost.cpp
  AsyncReads/FailingCompletion/FailingCompletionHost${ORL_PLATFORM}.cpp)
target_link_libraries(failing_completion_host PRIVATE orl_test_support)
add_dependencies(${room_target} reading_host failing_completion_host)

if(NOT WIN32)
  # Runs a program with restricted rights.
  add_executable(run_restricted AsyncReads/RestrictedRunLinux.cpp)
  target_link_libraries(run_restricted PRIVATE orl_strict)
  add_dependencies(${room_target} run_restricted)
endif()
