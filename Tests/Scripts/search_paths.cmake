# No program or library of the build tree may search the current folder for libraries.
if(NOT WIN32)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME Package.NothingIsLoadedFromTheCurrentFolder
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_LIST_DIR}/check_rpath.py" "${CMAKE_BINARY_DIR}")
  set_tests_properties(Package.NothingIsLoadedFromTheCurrentFolder PROPERTIES TIMEOUT 60)
endif()
