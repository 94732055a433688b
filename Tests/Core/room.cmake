# The program that the tests run under a debugger.
if(WIN32)
  add_executable(debugged_child Core/DebuggedChild.cpp)
  target_link_libraries(debugged_child PRIVATE ORLFoundation_private orl_strict)
  add_dependencies(${room_target} debugged_child)
endif()
