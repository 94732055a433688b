orl_test_folder(Stream)

# The tests run the program that is built in the same folder.
add_dependencies(${room_target} orl resource_files resources_lookup images_pictures)

# A host that runs orl's stream code while the test truncates the file.
set(orl_folder "${PROJECT_SOURCE_DIR}/Tools/orl")
add_executable(shrinking_stream_host Tools/Stream/ShrinkingStreamHost.cpp "${orl_folder}/Stream/StreamFile.cpp"
  "${orl_folder}/Common/UnbufferedRead.cpp" "${orl_folder}/Common/Failure.cpp" "${orl_folder}/Common/Text.cpp" "${orl_folder}/Common/Terminal/TextWidth.cpp")
target_include_directories(shrinking_stream_host PRIVATE "${orl_folder}/Common" "${orl_folder}/Common/Terminal" "${orl_folder}/Stream")
target_link_libraries(shrinking_stream_host PRIVATE ORLFoundation orl_strict)
if(WIN32)
  target_link_libraries(shrinking_stream_host PRIVATE ${ORL_ZLIB})
else()
  find_package(ZLIB REQUIRED)
  target_link_libraries(shrinking_stream_host PRIVATE ZLIB::ZLIB)
endif()
add_dependencies(${room_target} shrinking_stream_host)
if(TARGET run_restricted)
  add_dependencies(${room_target} run_restricted)
endif()

# Some tests parse the help as JSON, and OrlStopTest compiles the code of stop requests into the test program.
set_property(SOURCE Tools/OrlHelpTest.cpp Tools/OrlCompletionLinuxTest.cpp
  APPEND PROPERTY COMPILE_OPTIONS "-isystem${json_include}")
set_property(SOURCE Tools/OrlStopTest.cpp APPEND PROPERTY INCLUDE_DIRECTORIES "${orl_folder}/Common")
target_sources(${room_target} PRIVATE "${orl_folder}/Common/StopRequest.cpp")

# The tests run the commands that the documents show, and compare the output.
target_compile_definitions(${room_target} PRIVATE ORL_DOCUMENTS="${PROJECT_SOURCE_DIR}")

target_compile_definitions(${room_target} PRIVATE "ORL_PLUG_IN_SUFFIX=\"${CMAKE_SHARED_MODULE_SUFFIX}\"")

# Pictures are decoded by an independent library: libpng, or GDI+ on Windows.
target_sources(${room_target} PRIVATE Examples/PngReader${ORL_PLATFORM}.cpp)
if(WIN32)
  target_link_libraries(${room_target} PRIVATE gdiplus)
else()
  find_package(PNG REQUIRED)
  target_link_libraries(${room_target} PRIVATE PNG::PNG)
endif()
