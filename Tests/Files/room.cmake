orl_test_folder(BlockCache)
orl_test_folder(Disks)
orl_test_folder(Faults)
orl_test_folder(ShareModes)

# The File operations for the tests that make system calls fail.
if(NOT WIN32)
  target_sources(${room_target} PRIVATE Files/Faults/FileAccessOperationsLinux.cpp
    Files/Faults/FileTransferOperationsLinux.cpp)
endif()

# A second process that opens files while the tests hold handles.
add_executable(share_mode_host Files/ShareModes/ShareModeHost.cpp)
target_link_libraries(share_mode_host PRIVATE ORLFoundation_private orl_strict)
add_dependencies(${room_target} share_mode_host)

# For LruFileBuffer.h, the block cache of an example host, which is tested here too.
target_include_directories(${room_target} PRIVATE "${PROJECT_SOURCE_DIR}/Examples/BlockCache")
