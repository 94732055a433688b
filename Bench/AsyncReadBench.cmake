target_link_libraries(${bench_target} PRIVATE PkgConfig::LIBURING)
