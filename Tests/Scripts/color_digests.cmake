# Compiles the colour sources alone with two compilers at three optimisation levels: all digests must be equal.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME Media.ColorDigests.AreTheSameAtEveryLevelOfOptimisation
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/color_digests.py" "${PROJECT_SOURCE_DIR}" g++ clang++)
  set_tests_properties(Media.ColorDigests.AreTheSameAtEveryLevelOfOptimisation PROPERTIES TIMEOUT 300)
endif()
