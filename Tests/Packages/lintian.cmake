# cmake -D BUILD_DIR=... -P lintian.cmake
# Runs the distribution's own checks on the packages: an error fails the test, a warning is only printed.
include("${CMAKE_CURRENT_LIST_DIR}/Commands.cmake")

file(GLOB packages "${BUILD_DIR}/packages/*.deb")
list(LENGTH packages count)
if(NOT count EQUAL 4)
  message(FATAL_ERROR "there are ${count} packages: ${packages}")
endif()
run(lintian --allow-root --fail-on error ${packages})
message("${output}")
if(output MATCHES "(^|\n)E:")
  message(FATAL_ERROR "lintian reports errors")
endif()
