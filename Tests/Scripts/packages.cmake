# The Debian packages, made of what is built.
if(NOT WIN32 AND NOT ORL_SANITIZE AND ORL_BUILD_TOOLS)
  add_test(NAME Package.DebianPackagesAreComplete
    COMMAND ${CMAKE_COMMAND} -D BUILD_DIR=${CMAKE_BINARY_DIR} -D SOURCE_DIR=${PROJECT_SOURCE_DIR} -D VERSION=${PROJECT_VERSION}
      -D ABI=${ORL_ABI} -D CPACK=${CMAKE_CPACK_COMMAND} -P ${CMAKE_CURRENT_SOURCE_DIR}/Packages/run.cmake)
  set_tests_properties(Package.DebianPackagesAreComplete PROPERTIES TIMEOUT 600)
endif()
