# cmake -D SOURCE_DIR=... -D WORK=... [-D TOOLCHAIN=... -D BOOST_SOURCE=...] -P run.cmake
# Builds two library objects inside another project and verifies the source file names that their checks contain. With
# FETCHED, FetchContent provides the library, from a copy in the project's build folder.
file(REMOVE_RECURSE "${WORK}")
set(library "${SOURCE_DIR}")
if(FETCHED)
  set(library "${WORK}/_deps/orl-src")
  foreach(part API CMake CRV Inc Res Src tvxcore tvxmediatypes CMakeLists.txt LICENSE)
    file(COPY "${SOURCE_DIR}/${part}" DESTINATION "${library}")
  endforeach()
endif()
set(arguments -G Ninja -S "${SOURCE_DIR}/Tests/Embedded" -B "${WORK}" "-DORL_SOURCE=${library}" "-DORL_FETCHED=${FETCHED}")
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
  set(output "${output}" PARENT_SCOPE)
endfunction()

# Builds the object of a source and expects that its checks name exactly this source or header.
function(expect_name source name)
  set(object "orl/CMakeFiles/ORLFoundation_objects.dir/${source}.${extension}")
  run(${CMAKE_COMMAND} --build "${WORK}" --target "${object}")
  file(STRINGS "${WORK}/${object}" names REGEX "${name}$")
  if(NOT names STREQUAL name)
    message(FATAL_ERROR "the checks of ${source} name it [${names}], not [${name}]")
  endif()
endfunction()

run(${CMAKE_COMMAND} ${arguments})

# Installing the project must not install the library; a default build must not build the tests' static libraries.
file(READ "${WORK}/orl/cmake_install.cmake" install_script)
if(install_script MATCHES "file\\(INSTALL")
  message(FATAL_ERROR "the library installs files with the project around it")
endif()
run(${CMAKE_COMMAND} --build "${WORK}" -- -n)
if(output MATCHES "_private[.](a|lib)")
  message(FATAL_ERROR "a plain build builds static libraries of the tests")
endif()
expect_name("Src/Threads/Event.cpp" "Src/Threads/Event.cpp")
expect_name("Src/Threads/WaitableGatePool.cpp" "Inc/Threads/WaitableGatePoolAlgorithm.h")
