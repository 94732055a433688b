# Hosts built with the unpacked packages. Expects BUILD_DIR, SOURCE_DIR, VERSION and, for Windows, TOOLCHAIN.
include("${CMAKE_CURRENT_LIST_DIR}/Commands.cmake")

set(packaged "${BUILD_DIR}/packages/unpacked/usr")
if(TOOLCHAIN)
  set(packaged "${BUILD_DIR}/packages/unpacked/orlfoundation-${VERSION}-windows-x86_64")
endif()

# build_host(source folder, build folder, cmake arguments...) configures and builds a project that finds the package.
function(build_host source folder)
  if(TOOLCHAIN)
    list(APPEND ARGN "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DBoost_INCLUDE_DIR=${BUILD_DIR}/boost-include"
      "-DORLFoundation_DIR=${packaged}/lib/cmake/ORLFoundation")
  else()
    list(APPEND ARGN "-DCMAKE_PREFIX_PATH=${packaged}")
  endif()
  file(REMOVE_RECURSE "${folder}")
  run(${CMAKE_COMMAND} -G Ninja -S "${source}" -B "${folder}" ${ARGN})
  run(${CMAKE_COMMAND} --build "${folder}")
  if(TOOLCHAIN) # a Windows program loads libraries from its own folder
    file(GLOB libraries "${packaged}/bin/*.dll")
    foreach(library IN LISTS libraries)
      get_filename_component(name "${library}" NAME)
      file(CREATE_LINK "${library}" "${folder}/${name}" SYMBOLIC)
    endforeach()
  endif()
endfunction()

# expect_text(folder program expected arguments...) runs a host in its folder. Fails unless its output and errors match.
function(expect_text folder program expected)
  set(command "${folder}/${program}")
  if(TOOLCHAIN)
    set(command "${SOURCE_DIR}/Scripts/run-under-wine" "${folder}/${program}.exe")
  endif()
  execute_process(COMMAND ${command} ${ARGN} WORKING_DIRECTORY "${folder}"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  string(REPLACE "\r" "" output "${output}")
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${program} ${ARGN} ended with ${status} and printed [${output}], not [${expected}]")
  endif()
endfunction()
