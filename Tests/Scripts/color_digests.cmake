# The colour sources by themselves, by two compilers at three levels of optimisation: every digest is the same.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME Media.ColorDigests.AreTheSameAtEveryLevelOfOptimisation
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/color_digests.py" "${PROJECT_SOURCE_DIR}" g++ clang++)
  set_tests_properties(Media.ColorDigests.AreTheSameAtEveryLevelOfOptimisation PROPERTIES TIMEOUT 300)
endif()
