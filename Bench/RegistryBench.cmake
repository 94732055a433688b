find_package(SQLite3 REQUIRED)
target_link_libraries(${bench_target} PRIVATE SQLite::SQLite3 lmdb)
