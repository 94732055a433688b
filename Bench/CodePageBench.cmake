find_package(ICU REQUIRED COMPONENTS uc)
target_link_libraries(${bench_target} PRIVATE ICU::uc)
