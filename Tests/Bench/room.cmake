# Tests of the benchmark harness. No test measures real time: the trials and figures are invented.
target_include_directories(${room_target} PRIVATE "${PROJECT_SOURCE_DIR}/Bench/Support"
  "${PROJECT_SOURCE_DIR}/Bench/Support/${ORL_PLATFORM}")
