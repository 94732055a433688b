find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBAVUTIL REQUIRED IMPORTED_TARGET libavutil)
target_link_libraries(${bench_target} PRIVATE PkgConfig::LIBAVUTIL)
