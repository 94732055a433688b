# Tests the Windows form of the package configuration, which includes Boost.Thread and uses the host's Boost headers.
# The test uses a copy with placeholder targets, so that it needs no Windows build.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  foreach(case Hinted Missing OfAnotherVersion)
    set(name "Package.BoostHeaders${case}")
    add_test(NAME ${name} COMMAND ${CMAKE_COMMAND}
      -D CASE=${case} -D SOURCE_DIR=${PROJECT_SOURCE_DIR} -D WORK=${CMAKE_BINARY_DIR}/package-config/${case}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/PackageConfig/run.cmake)
    set_tests_properties(${name} PROPERTIES TIMEOUT 60)
  endforeach()
endif()
