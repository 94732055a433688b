# The tests run the program that the build made beside them.
add_dependencies(${room_target} orl)

# A host with orl's own stream in it, whose file is cut meanwhile.
set(orl_folder "${PROJECT_SOURCE_DIR}/Tools/orl")
add_executable(shrinking_stream_host Tools/ShrinkingStreamHost.cpp "${orl_folder}/StreamFile.cpp"
  "${orl_folder}/Failure.cpp" "${orl_folder}/Text.cpp")
target_include_directories(shrinking_stream_host PRIVATE "${orl_folder}")
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

# What the documents show is typed and compared.
target_compile_definitions(${room_target} PRIVATE ORL_DOCUMENTS="${PROJECT_SOURCE_DIR}")
