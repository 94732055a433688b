# The packages, made once of what is built. The other tests use them.
if(NOT WIN32 AND NOT ORL_SANITIZE AND ORL_BUILD_TOOLS)
  # Adds a test of what Tests/Packages/<script>.cmake does with the packages; further arguments are its variables.
  function(orl_package_test name script)
    set(definitions "")
    foreach(definition IN LISTS ARGN)
      list(APPEND definitions -D "${definition}")
    endforeach()
    add_test(NAME Package.${name} COMMAND ${CMAKE_COMMAND} -D BUILD_DIR=${CMAKE_BINARY_DIR} -D SOURCE_DIR=${PROJECT_SOURCE_DIR}
      -D VERSION=${PROJECT_VERSION} -D ABI=${ORL_ABI} ${definitions} -P ${CMAKE_CURRENT_SOURCE_DIR}/Packages/${script}.cmake)
    set_tests_properties(Package.${name} PROPERTIES TIMEOUT 300 FIXTURES_REQUIRED orl_packages)
  endfunction()

  orl_package_test(PackagesAreMade make GENERATOR=DEB CPACK=${CMAKE_CPACK_COMMAND})
  set_tests_properties(Package.PackagesAreMade PROPERTIES FIXTURES_REQUIRED "" FIXTURES_SETUP orl_packages)
  orl_package_test(DebianPackagesAreComplete debian)
  orl_package_test(DebianPackagesHaveNoLintianErrors lintian)
endif()
