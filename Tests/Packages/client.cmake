# cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D VERSION=... [-D TOOLCHAIN=...] -D COMPILER=... -D STANDARD=... -P client.cmake
# Builds and runs a host with a compiler and a standard; "default" is the compiler's default.
include("${CMAKE_CURRENT_LIST_DIR}/Hosts.cmake")

set(arguments "-DCLIENT_SOURCE=${SOURCE_DIR}/Tests/Consumer/EveryClass/EveryClass.cpp")
if(NOT TOOLCHAIN)
  list(APPEND arguments "-DCMAKE_CXX_COMPILER=${COMPILER}")
endif()
if(NOT STANDARD STREQUAL "default")
  list(APPEND arguments -DCMAKE_CXX_STANDARD=${STANDARD} -DCMAKE_CXX_STANDARD_REQUIRED=ON -DCMAKE_CXX_EXTENSIONS=OFF)
endif()
set(folder "${BUILD_DIR}/packages/client-${COMPILER}-${STANDARD}")
build_host("${CMAKE_CURRENT_LIST_DIR}/Client" "${folder}" ${arguments})
expect_text("${folder}" client "^every class touched\n$")
