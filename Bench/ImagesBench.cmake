# libpng writes the pictures; the peer decodes them with libspng. Premultiply.cpp is compiled in, because the library
# does not export it.
find_package(PNG REQUIRED)
target_sources(${bench_target} PRIVATE "${PROJECT_SOURCE_DIR}/Src/System/Images/Premultiply.cpp")
target_include_directories(${bench_target} PRIVATE "${PROJECT_SOURCE_DIR}/Inc")
target_link_libraries(${bench_target} PRIVATE PNG::PNG PkgConfig::SPNG)
