target_sources(${room_target} PRIVATE Settings/RegistryPlace.cpp Settings/RegistryPlace${ORL_PLATFORM}.cpp)
