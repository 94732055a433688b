# Checks the style with the only clang-format version that .clang-format is written for.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  add_test(NAME House.FilesAreFormatted COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/Scripts/check_format.py")
  set_tests_properties(House.FilesAreFormatted PROPERTIES TIMEOUT 300)
endif()
