# cmake -D CASE=... -D SOURCE_DIR=... -D WORK=... -P run.cmake
include(CMakePackageConfigHelpers)
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}/headers/boost" "${WORK}/none")
file(TOUCH "${WORK}/headers/boost/function.hpp")

set(ORL_PACKAGE_NEEDS_BOOST_THREAD OFF)
set(ORL_PACKAGE_BOOST_VERSION 1_74)
set(CMAKE_INSTALL_PREFIX "${WORK}")
configure_package_config_file("${SOURCE_DIR}/CMake/ORLFoundationConfig.cmake.in"
  "${WORK}/package/ORLFoundationConfig.cmake" INSTALL_DESTINATION package)
file(COPY "${SOURCE_DIR}/CMake/OrlTargetResources.cmake" DESTINATION "${WORK}/package")
file(WRITE "${WORK}/package/ORLFoundationTargets.cmake" "add_library(ORL::orl_boost_headers INTERFACE IMPORTED)\n")

# The host searches for headers only below this folder, like a host that cross-compiles.
set(arguments -G Ninja -S "${SOURCE_DIR}/Tests/PackageConfig" -B "${WORK}/build"
  "-DORLFoundation_DIR=${WORK}/package"
  "-DCMAKE_FIND_ROOT_PATH=${WORK}/none" -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY)
set(version 1_74)
if(CASE STREQUAL "Hinted")
  set(expected "headers in \\[${WORK}/headers\\]")
elseif(CASE STREQUAL "Missing")
  set(expected "are needed. Found: none,.*Set Boost_INCLUDE_DIR")
else()
  set(version 1_80)
  set(expected "1_74 are needed. Found: 1_80,.*Set Boost_INCLUDE_DIR")
endif()
if(NOT CASE STREQUAL "Missing")
  file(WRITE "${WORK}/headers/boost/version.hpp" "#define BOOST_LIB_VERSION \"${version}\"\n")
  list(APPEND arguments "-DBoost_INCLUDE_DIR=${WORK}/headers")
endif()

execute_process(COMMAND ${CMAKE_COMMAND} ${arguments}
  RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
string(REGEX REPLACE "[ \n]+" " " text "${output}${errors}")
if(CASE STREQUAL "Hinted" AND NOT status EQUAL 0 OR NOT CASE STREQUAL "Hinted" AND status EQUAL 0)
  message(FATAL_ERROR "configuring ended with ${status}:\n${output}${errors}")
endif()
if(NOT text MATCHES "${expected}")
  message(FATAL_ERROR "'${expected}' is not in:\n${output}${errors}")
endif()
