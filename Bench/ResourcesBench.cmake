# Builds the plug-in, and the same strings and names for the peers.
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0)
find_program(GLIB_COMPILE_RESOURCES glib-compile-resources REQUIRED)
find_program(MSGFMT msgfmt REQUIRED)
include("${CMAKE_CURRENT_SOURCE_DIR}/Support/PlugIn.cmake")
file(MAKE_DIRECTORY "${bench_resources}/locale/en_US/LC_MESSAGES")

set(catalogue "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n")
set(position 0)
foreach(text IN LISTS bench_texts)
  string(APPEND catalogue "\nmsgid \"text ${position}\"\nmsgstr \"${text}\"\n")
  math(EXPR position "${position} + 1")
endforeach()
set(listing "<?xml version=\"1.0\"?>\n<gresources><gresource prefix=\"/orl\">\n")
foreach(number RANGE 0 999)
  math(EXPR digits "10000 + ${number}")
  string(SUBSTRING ${digits} 1 4 digits)
  string(APPEND listing "<file alias=\"PICTURE_${digits}\">picture</file>\n")
endforeach()
string(APPEND listing "</gresource></gresources>\n")
file(CONFIGURE OUTPUT "${bench_resources}/bench.po" CONTENT "${catalogue}" @ONLY)
file(CONFIGURE OUTPUT "${bench_resources}/bench.gresource.xml" CONTENT "${listing}" @ONLY)
file(CONFIGURE OUTPUT "${bench_resources}/picture" CONTENT "0000" @ONLY)

set(bench_catalogue "${bench_resources}/locale/en_US/LC_MESSAGES/orlbench.mo")
set(bench_gresource "${bench_resources}/bench.gresource")
add_custom_command(OUTPUT "${bench_catalogue}" COMMAND "${MSGFMT}" bench.po -o "${bench_catalogue}"
  WORKING_DIRECTORY "${bench_resources}" DEPENDS "${bench_resources}/bench.po" VERBATIM)
add_custom_command(OUTPUT "${bench_gresource}"
  COMMAND "${GLIB_COMPILE_RESOURCES}" bench.gresource.xml --target=${bench_gresource}
  WORKING_DIRECTORY "${bench_resources}" DEPENDS "${bench_resources}/bench.gresource.xml" VERBATIM)
add_custom_target(bench_resource_files DEPENDS "${bench_catalogue}" "${bench_gresource}")

add_dependencies(${bench_target} bench_resource_files)
target_link_libraries(${bench_target} PRIVATE PkgConfig::GIO)
target_compile_definitions(${bench_target} PRIVATE "ORL_BENCH_PLUG_IN=\"$<TARGET_FILE:bench_plug_in>\""
  "ORL_BENCH_LOCALES=\"${bench_resources}/locale\"" "ORL_BENCH_GRESOURCE=\"${bench_gresource}\"")
