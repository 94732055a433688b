# libavutil's timecode functions check every label of a day; the package exists only on Linux.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(LIBAVUTIL REQUIRED IMPORTED_TARGET libavutil)
  target_link_libraries(${room_target} PRIVATE PkgConfig::LIBAVUTIL)
endif()

# The fuzzers' inputs are replayed as plain tests.
target_compile_definitions(${room_target} PRIVATE ORL_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/Fuzz/Corpus")
