# The tests run the example hosts, which are built into the same folder.
add_dependencies(${room_target} example_block_cache example_plugins example_waveform example_gallery example_cut_list example_window_place
  example_list_clips example_read_file example_timecodes example_work_queue example_settings)
target_compile_definitions(${room_target} PRIVATE ORL_EXAMPLES="${PROJECT_SOURCE_DIR}/Examples")

# Pictures are decoded by an independent library: libpng, or GDI+ on Windows.
target_sources(${room_target} PRIVATE Examples/PngReader${ORL_PLATFORM}.cpp)
if(WIN32)
  target_link_libraries(${room_target} PRIVATE gdiplus)
else()
  find_package(PNG REQUIRED)
  target_link_libraries(${room_target} PRIVATE PNG::PNG)
endif()
