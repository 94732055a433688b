# The debugger visualisers. gdb itself checks its printers; the Windows file is only compared with the headers.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  find_program(ORL_GDB gdb REQUIRED)
  add_executable(debugger_host Debugger/debugger_host.cpp)
  target_link_libraries(debugger_host PRIVATE ORLFoundation orl_strict)
  target_compile_options(debugger_host PRIVATE -O0 -g)
  add_test(NAME Debugger.GdbPrinters.ShowWhatTheLibraryMeans
    COMMAND ${ORL_GDB} -nx -batch -x "${CMAKE_CURRENT_SOURCE_DIR}/Debugger/check_views.py"
      --args $<TARGET_FILE:debugger_host> "${PROJECT_SOURCE_DIR}/Debug/orl_printers.py")
  add_test(NAME Debugger.Natvis.NamesWhatTheHeadersDeclare
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/Debugger/check_natvis.py" "${PROJECT_SOURCE_DIR}/Debug/orl.natvis"
      "${PROJECT_SOURCE_DIR}/API/Inc" "${PROJECT_SOURCE_DIR}/Inc" "${PROJECT_SOURCE_DIR}/tvxcore/Inc"
      "${PROJECT_SOURCE_DIR}/tvxmediatypes/Inc")
  set_tests_properties(Debugger.GdbPrinters.ShowWhatTheLibraryMeans Debugger.Natvis.NamesWhatTheHeadersDeclare
    PROPERTIES TIMEOUT 120)
  # gdb prints text in the character set of its locale.
  set_tests_properties(Debugger.GdbPrinters.ShowWhatTheLibraryMeans PROPERTIES ENVIRONMENT "LC_ALL=C.UTF-8")
endif()
