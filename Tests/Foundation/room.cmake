orl_test_folder(LoadUnload)

# Separate hosts, linked to the shared libraries as real hosts are.
add_executable(lifecycle_host Foundation/LifecycleHost.cpp)
target_link_libraries(lifecycle_host PRIVATE ORLFoundation orl_strict)
add_executable(lifecycle_static_host Foundation/LifecycleHost.cpp)
target_compile_definitions(lifecycle_static_host PRIVATE ORL_START_STATICALLY)
target_link_libraries(lifecycle_static_host PRIVATE ORLFoundation orl_strict)

add_executable(handles_at_exit_host Foundation/HandlesAtExitHost.cpp)
target_link_libraries(handles_at_exit_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} handles_at_exit_host)

add_executable(services_at_exit_host Foundation/AtExit/ServicesAtExitHost.cpp Foundation/AtExit/ServicesAtExit${ORL_PLATFORM}.cpp)
target_link_libraries(services_at_exit_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} services_at_exit_host)

# A host that is not linked to the library, but loads and unloads it, directly and through a plug-in.
add_executable(load_unload_host Foundation/LoadUnload/LoadUnloadHost.cpp Foundation/LoadUnload/LoadUnloadHost${ORL_PLATFORM}.cpp)
target_link_libraries(load_unload_host PRIVATE orl_strict ${CMAKE_DL_LIBS} Threads::Threads)
add_library(load_unload_module MODULE Foundation/LoadUnload/LoadUnloadModule.cpp)
target_link_libraries(load_unload_module PRIVATE ORLFoundation orl_strict)
set_target_properties(load_unload_module PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
target_compile_definitions(load_unload_host PRIVATE "ORL_LIBRARY_FILE=\"$<TARGET_FILE_NAME:ORLFoundation>\""
  "ORL_MODULE_FILE=\"$<TARGET_FILE_NAME:load_unload_module>\"")
add_dependencies(load_unload_host load_unload_module)
if(ORL_SANITIZE)
  target_compile_definitions(load_unload_host PRIVATE ORL_SANITIZED)
endif()
if(WIN32)
  target_link_libraries(load_unload_host PRIVATE psapi)
  target_compile_definitions(load_unload_host PRIVATE ORL_ABI="${ORL_ABI}")
endif()

add_dependencies(${room_target} lifecycle_host lifecycle_static_host load_unload_host ORLFoundation)
