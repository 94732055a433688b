# Builds the library as part of another project: beside it, and inside its build folder, where FetchContent puts it. In
# both cases reports must name sources relative to the library's folder, and the project must be unchanged otherwise.
if(NOT ORL_SANITIZE)
  foreach(case Beside Fetched)
    set(name Package.InsideAnotherProject_${case}_ChecksNameTheSameSourcesAndNothingElseChanges)
    string(TOLOWER ${case} folder)
    add_test(NAME ${name}
      COMMAND ${CMAKE_COMMAND} -D SOURCE_DIR=${PROJECT_SOURCE_DIR} -D WORK=${CMAKE_BINARY_DIR}/embedded-${folder}
        -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -D BOOST_SOURCE=${ORL_BOOST_SOURCE} -D FETCHED=$<STREQUAL:${case},Fetched>
        -P ${CMAKE_CURRENT_SOURCE_DIR}/Embedded/run.cmake)
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  endforeach()
endif()
