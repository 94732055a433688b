# Pictures are written by libpng; the peer decodes with libspng. Premultiplying is private, so it is compiled in.
find_package(PNG REQUIRED)
target_sources(${bench_target} PRIVATE "${PROJECT_SOURCE_DIR}/Src/System/Images/Premultiply.cpp")
target_include_directories(${bench_target} PRIVATE "${PROJECT_SOURCE_DIR}/Inc")
target_link_libraries(${bench_target} PRIVATE PNG::PNG PkgConfig::SPNG)
