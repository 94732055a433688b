# Reports name sources relative to this project, even if another project builds the library as a part of it.
if(NOT ORL_SANITIZE)
  add_test(NAME Package.ChecksNameTheSameSourcesInsideAnotherProject
    COMMAND ${CMAKE_COMMAND} -D SOURCE_DIR=${PROJECT_SOURCE_DIR} -D WORK=${CMAKE_BINARY_DIR}/embedded
      -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -D BOOST_SOURCE=${ORL_BOOST_SOURCE}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/Embedded/run.cmake)
  set_tests_properties(Package.ChecksNameTheSameSourcesInsideAnotherProject PROPERTIES TIMEOUT 300)
endif()
