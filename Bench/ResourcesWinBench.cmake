include("${CMAKE_CURRENT_SOURCE_DIR}/Support/PlugIn.cmake")
target_compile_definitions(${bench_target} PRIVATE "ORL_BENCH_PLUG_IN=u\"$<TARGET_FILE_NAME:bench_plug_in>\"")
