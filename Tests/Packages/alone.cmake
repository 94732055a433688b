# cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D VERSION=... -P alone.cmake
# Runs the packaged Windows tool with nothing but its package: in an empty folder, in a new Wine prefix, and without a
# search path.
include("${CMAKE_CURRENT_LIST_DIR}/Commands.cmake")

set(work "${BUILD_DIR}/packages")
set(package "${work}/unpacked/orlfoundation-${VERSION}-windows-x86_64")
set(empty "${work}/alone")
file(REMOVE_RECURSE "${empty}" "${work}/wine")
file(COPY "${package}/bin" DESTINATION "${empty}")
file(WRITE "${empty}/abc.txt" "abc")
set(ENV{WINEPREFIX} "${work}/wine")
set(ENV{WINEPATH} "")

# Output goes to files: the services that Wine starts keep a pipe open after the program has ended.
function(run_packaged expected)
  execute_process(COMMAND "${SOURCE_DIR}/Scripts/run-under-wine" bin/orl.exe ${ARGN} WORKING_DIRECTORY "${empty}"
    RESULT_VARIABLE status OUTPUT_FILE "${work}/output.txt" ERROR_FILE "${work}/errors.txt")
  file(READ "${work}/output.txt" output)
  file(READ "${work}/errors.txt" errors)
  string(REPLACE "\r" "" output "${output}")
  if(NOT status EQUAL 0 OR NOT output MATCHES "${expected}")
    list(APPEND failures "orl ${ARGN} ended with ${status} and printed [${output}] and [${errors}], not [${expected}]\n")
    set(failures "${failures}" PARENT_SCOPE)
  endif()
endfunction()

run_packaged("^orl ${VERSION}\n$" --version)
run_packaged("^01;00;00;00\n$" tc show 107892 --format 2997drop) # loads all libraries
run_packaged("^[0-9a-f]+:[0-9a-f]+:[0-9a-f]+  abc[.]txt\n$" hash abc.txt)

find_program(wineserver wineserver PATHS /usr/lib/wine REQUIRED)
execute_process(COMMAND "${wineserver}" -k)
execute_process(COMMAND "${wineserver}" -w)
file(REMOVE_RECURSE "${work}/wine") # hundreds of megabytes
if(failures)
  message(FATAL_ERROR ${failures})
endif()
