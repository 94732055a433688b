# Installs what was built, moves the installed tree, and builds and runs a host against it.
if(NOT ORL_SANITIZE)
  add_test(NAME Package.HostBuildsAgainstTheMovedInstallation
    COMMAND ${CMAKE_COMMAND}
      -D BUILD_DIR=${CMAKE_BINARY_DIR} -D SOURCE_DIR=${PROJECT_SOURCE_DIR}
      -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -D VERSION=${PROJECT_VERSION}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/Consumer/run.cmake)
  set_tests_properties(Package.HostBuildsAgainstTheMovedInstallation PROPERTIES TIMEOUT 300)
endif()
