# A plug-in that uses the shared library; the tests load and unload both.
add_library(tvxcore_test_guest MODULE SmallBlocks/SmallBlockGuest.cpp)
target_link_libraries(tvxcore_test_guest PRIVATE tvxcore orl_strict)
set_target_properties(tvxcore_test_guest PROPERTIES PREFIX ""
  LIBRARY_OUTPUT_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
add_dependencies(${room_target} tvxcore_test_guest)
target_compile_definitions(${room_target} PRIVATE
  $<IF:$<BOOL:${WIN32}>,TVXCORE_TEST_GUEST="tvxcore_test_guest.dll",TVXCORE_TEST_GUEST="$<TARGET_FILE:tvxcore_test_guest>">)
set_source_files_properties(SmallBlocks/SmallBlockUnloadWinTest.cpp PROPERTIES COMPILE_DEFINITIONS "ORL_ABI=\"${ORL_ABI}\"")
