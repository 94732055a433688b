target_compile_definitions(${room_target} PRIVATE ORL_THIS_PROGRAM="$<TARGET_FILE_NAME:${room_target}>")

# A host linked to the shared libraries, with an environment and a name that the tests choose.
add_executable(settings_host System/SettingsHost.cpp)
target_link_libraries(settings_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} settings_host)
