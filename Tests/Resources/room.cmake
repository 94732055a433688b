# Two plug-ins with resources, built the way a plug-in author builds them.
foreach(module Lookup Twin)
  string(TOLOWER ${module} name)
  add_library(resources_${name} MODULE Resources/PlugIn.cpp)
  target_link_libraries(resources_${name} PRIVATE orl_strict)
  set_target_properties(resources_${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  orl_target_resources(resources_${name} Resources/Data/${module}.rc
    DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/Resources/Data/two_sizes.cur" "${CMAKE_CURRENT_SOURCE_DIR}/Resources/Data/colours.cur")
  add_dependencies(${room_target} resources_${name})
endforeach()
target_compile_definitions(${room_target} PRIVATE "ORL_PLUG_IN_SUFFIX=\"${CMAKE_SHARED_MODULE_SUFFIX}\"")

# The same resources as a compiled file and as a Windows module. Every platform reads both forms.
set(lookup_res "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources_lookup.res")
set(lookup_dll "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources_lookup_windows.dll")
find_program(ORL_WINDOWS_LINKER x86_64-w64-mingw32-ld REQUIRED)
file(GLOB lookup_inputs CONFIGURE_DEPENDS Resources/Data/*)
add_custom_command(OUTPUT "${lookup_res}" "${lookup_dll}"
  COMMAND "${ORL_WINDRES}" -c 65001 "--preprocessor=${CMAKE_CXX_COMPILER}" --preprocessor-arg=-E --preprocessor-arg=-xc
          -O res Lookup.rc "${lookup_res}"
  COMMAND "${ORL_WINDRES}" -O coff "${lookup_res}" "${lookup_res}.obj"
  COMMAND "${ORL_WINDOWS_LINKER}" -shared -e 0 "${lookup_res}.obj" -o "${lookup_dll}"
  WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/Resources/Data" DEPENDS ${lookup_inputs} VERBATIM)
add_custom_target(resource_files DEPENDS "${lookup_res}" "${lookup_dll}")
add_dependencies(${room_target} resource_files)

# The linker redirects these platform functions to the tests, which count the calls or make them fail.
foreach(symbol
    _ZN3ORL7Modules8Platform22GetModuleFileName_ImplEP11HINSTANCE__Pt$<IF:$<BOOL:${WIN32}>,y,m>
    _ZN3ORL7Modules8Platform17LoadResource_ImplERKNS1_6SourceEPKvRi
    _ZN3ORL7Modules8Platform18OpenResources_ImplEP11HINSTANCE__)
  target_link_options(${room_target} PRIVATE "-Wl,--wrap=${symbol}")
endforeach()

# A host with static objects, linked to the shared libraries like any host.
add_executable(library_module_host Resources/LibraryModuleHost.cpp)
target_link_libraries(library_module_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} library_module_host)
if(WIN32)
  target_compile_definitions(${room_target} PRIVATE ORL_NO_LINUX_MODULE)
else()
  # Compares what orl finds in a module with what pefile and wrestool find.
  find_program(ORL_WRESTOOL wrestool REQUIRED)
  find_program(ORL_SYSTEM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED) # the interpreter with pefile
  add_test(NAME Resources.Oracles.PefileAndWrestoolFindTheSame
    COMMAND "${ORL_SYSTEM_PYTHON}" "${CMAKE_CURRENT_SOURCE_DIR}/Resources/compare_with_oracles.py" $<TARGET_FILE:orl>
            "${ORL_WRESTOOL}" "${lookup_dll}")
  set_tests_properties(Resources.Oracles.PefileAndWrestoolFindTheSame PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT})
endif()

# The tests read the library's own resources from its shared library.
target_compile_definitions(${room_target} PRIVATE "ORL_LIBRARY_FILE=\"$<TARGET_FILE_NAME:ORLFoundation>\""
  ORL_LIBRARY_ICON="${PROJECT_SOURCE_DIR}/Res/ORLFoundation.ico")
add_dependencies(${room_target} ORLFoundation)
