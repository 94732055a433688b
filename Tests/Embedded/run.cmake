# cmake -D SOURCE_DIR=... -D WORK=... [-D TOOLCHAIN=... -D BOOST_SOURCE=...] -P run.cmake
# Builds two objects inside another project and reads the source names in their checks.
file(REMOVE_RECURSE "${WORK}")
set(arguments -G Ninja -S "${SOURCE_DIR}/Tests/Embedded" -B "${WORK}" "-DORL_SOURCE=${SOURCE_DIR}" -DCMAKE_BUILD_TYPE=Release)
set(extension o)
if(TOOLCHAIN)
  list(APPEND arguments "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DORL_BOOST_SOURCE=${BOOST_SOURCE}")
  set(extension obj)
endif()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
endfunction()

# One check is in a library source, the other in a library header.
function(expect_name source name)
  set(object "orl/CMakeFiles/ORLFoundation_objects.dir/${source}.${extension}")
  run(${CMAKE_COMMAND} --build "${WORK}" --target "${object}")
  file(STRINGS "${WORK}/${object}" names REGEX "${name}$")
  if(NOT names STREQUAL name)
    message(FATAL_ERROR "the checks of ${source} name it [${names}], not [${name}]")
  endif()
endfunction()

run(${CMAKE_COMMAND} ${arguments})
expect_name("Src/Threads/Event.cpp" "Src/Threads/Event.cpp")
expect_name("Src/Threads/WaitableGatePool.cpp" "Inc/Threads/WaitableGatePoolAlgorithm.h")
