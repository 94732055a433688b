# Two plug-ins linked to the shared library, and a host that loads them. The test program of this folder links the
# library statically.
add_executable(test_tvxcore_borders tvxcore/Borders/BordersTest.cpp)
target_link_libraries(test_tvxcore_borders PRIVATE orl_strict gtest gtest_main ${CMAKE_DL_LIBS})
foreach(number 1 2)
  set(plugin tvxcore_test_plugin_${number})
  add_library(${plugin} MODULE tvxcore/Borders/Plugin.cpp)
  target_link_libraries(${plugin} PRIVATE tvxcore orl_strict)
  set_target_properties(${plugin} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
  if(WIN32)
    set(place "$<TARGET_FILE_NAME:${plugin}>")
  else()
    set(place "$<TARGET_FILE:${plugin}>")
  endif()
  target_compile_definitions(test_tvxcore_borders PRIVATE TVX_TEST_PLUGIN_${number}="${place}")
  add_dependencies(test_tvxcore_borders ${plugin})
endforeach()
gtest_discover_tests(test_tvxcore_borders DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
  TEST_PREFIX "tvxcore.Borders." PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT})

# A host that exits while a module's threads are working.
add_library(tvxcore_exit_module SHARED tvxcore/Exit/Module.cpp)
target_link_libraries(tvxcore_exit_module PRIVATE tvxcore orl_strict)
add_executable(tvxcore_exit_host tvxcore/Exit/Host.cpp)
target_link_libraries(tvxcore_exit_host PRIVATE tvxcore_exit_module orl_strict)
add_dependencies(${room_target} tvxcore_exit_host)
