# A host in its user's locale, linked to the shared libraries as real hosts are.
add_executable(users_locale_host Strings/UsersLocaleHost.cpp)
target_link_libraries(users_locale_host PRIVATE ORLFoundation orl_strict)
add_dependencies(${room_target} users_locale_host)
