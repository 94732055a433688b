# A second process that opens files while the tests hold handles.
add_executable(share_mode_host Files/ShareModeHost.cpp)
target_link_libraries(share_mode_host PRIVATE ORLFoundation_private orl_strict)
add_dependencies(${room_target} share_mode_host)

# The sample host of a block cache, shared with the examples.
target_include_directories(${room_target} PRIVATE "${PROJECT_SOURCE_DIR}/Examples/BlockCache")

# Separate hosts: one that reads, linked to the shared libraries as real hosts are, and one whose reads fail.
add_executable(reading_host Files/ReadingHost.cpp)
target_link_libraries(reading_host PRIVATE ORLFoundation orl_strict)
add_executable(failing_completion_host Files/FailingCompletionHost.cpp
  Files/FailingCompletionHost${ORL_PLATFORM}.cpp)
target_link_libraries(failing_completion_host PRIVATE orl_test_support)
add_dependencies(${room_target} reading_host failing_completion_host)

if(NOT WIN32)
  # Runs a program with restricted rights.
  add_executable(run_restricted Files/RestrictedRunLinux.cpp)
  target_link_libraries(run_restricted PRIVATE orl_strict)
  add_dependencies(${room_target} run_restricted)
endif()
