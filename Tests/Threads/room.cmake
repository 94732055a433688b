# A program that names a thread; the test debugs it.
if(WIN32)
  add_executable(naming_child Threads/NamingChild.cpp)
  target_link_libraries(naming_child PRIVATE ORLFoundation_private orl_strict)
  add_dependencies(${room_target} naming_child)
endif()
