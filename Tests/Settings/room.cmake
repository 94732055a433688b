orl_test_folder(Database)
orl_test_folder(Hosts)

target_sources(${room_target} PRIVATE Settings/TestRegistry.cpp Settings/TestRegistry${ORL_PLATFORM}.cpp
  Settings/RegistryStage.cpp)
target_sources(${room_target} PRIVATE Settings/Hosts/RegistryModel.cpp)

# A second process that works on the registry at the same time as the tests. Like a host, it links to the shared
# libraries.
add_executable(registry_host Settings/Hosts/RegistryHost.cpp Settings/Hosts/RegistryModel.cpp)
target_link_libraries(registry_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} registry_host)

if(NOT WIN32)
  # The tests call SQLite directly: they create databases and make its calls fail.
  target_link_libraries(${room_target} PRIVATE ${ORL_SQLITE})

  # A module that brings a second copy of the library into the test process; and orl, which tests kill.
  add_library(registry_guest MODULE Settings/Hosts/RegistryGuestLinux.cpp)
  set_target_properties(registry_guest PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  target_link_libraries(registry_guest PRIVATE ORLFoundation orl_strict)
  add_dependencies(${room_target} registry_guest orl)
endif()
