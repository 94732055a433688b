# A second process that opens files while the tests hold handles.
add_executable(share_mode_host Files/ShareModeHost.cpp)
target_link_libraries(share_mode_host PRIVATE ORLFoundation_private orl_strict)
add_dependencies(${room_target} share_mode_host)

# The sample host of a block cache, shared with the examples.
target_include_directories(${room_target} PRIVATE "${PROJECT_SOURCE_DIR}/Examples/BlockCache")
