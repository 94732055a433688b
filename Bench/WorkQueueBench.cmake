find_package(TBB REQUIRED)
target_link_libraries(${bench_target} PRIVATE TBB::tbb)
