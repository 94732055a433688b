find_package(GSL REQUIRED)
target_link_libraries(${bench_target} PRIVATE GSL::gsl)
