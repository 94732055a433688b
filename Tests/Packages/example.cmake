# cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D VERSION=... [-D TOOLCHAIN=...] -D EXAMPLE=... [-D BESIDE=...]
#       [-D PROGRAM=... -D EXPECTED=... [-D ARGUMENTS=...]] -P example.cmake
# Copies an example into an empty folder, with the examples that it uses, and builds and runs it there.
include("${CMAKE_CURRENT_LIST_DIR}/Hosts.cmake")

set(work "${BUILD_DIR}/packages/example-${EXAMPLE}")
file(REMOVE_RECURSE "${work}")
separate_arguments(BESIDE)
foreach(folder IN ITEMS ${EXAMPLE} ${BESIDE})
  file(COPY "${SOURCE_DIR}/Examples/${folder}" DESTINATION "${work}")
endforeach()
build_host("${work}/${EXAMPLE}" "${work}/build" -DCMAKE_BUILD_TYPE=Debug)
set(ENV{XDG_DATA_HOME} "${work}/settings")
separate_arguments(ARGUMENTS)
if(PROGRAM)
  expect_text("${work}/build" ${PROGRAM} "${EXPECTED}" ${ARGUMENTS})
endif()
