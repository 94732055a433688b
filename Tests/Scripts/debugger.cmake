# Tests the debugger visualisers: the printers run in gdb, the natvis file is only compared with the headers.
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
      "${PROJECT_SOURCE_DIR}/tvxmediatypes/Inc" "${PROJECT_SOURCE_DIR}/Src/Threads" "${PROJECT_SOURCE_DIR}/tvxcore/Src/Executors")
  set_tests_properties(Debugger.GdbPrinters.ShowWhatTheLibraryMeans Debugger.Natvis.NamesWhatTheHeadersDeclare
    PROPERTIES TIMEOUT 120)

  # Runs the debugging session that Docs/debugging.md shows.
  add_library(mask_plug_in MODULE Debugger/Session/mask_plug_in.cpp)
  add_executable(session_host Debugger/Session/session_host.cpp)
  target_link_libraries(session_host PRIVATE ${CMAKE_DL_LIBS})
  target_compile_definitions(session_host PRIVATE PLUG_IN="$<TARGET_FILE:mask_plug_in>")
  foreach(target mask_plug_in session_host)
    target_link_libraries(${target} PRIVATE ORLFoundation orl_strict)
    target_compile_options(${target} PRIVATE -O0 -g)
  endforeach()
  add_dependencies(session_host mask_plug_in)
  set(session_test Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/Debugger/check_session.py" ${ORL_GDB}
    $<TARGET_FILE:session_host>)
  add_test(NAME Debugger.Session.RunsAsTheDocumentShows COMMAND ${session_test}
    "${PROJECT_SOURCE_DIR}/Docs/debugging.md" "${PROJECT_SOURCE_DIR}/Debug/orl_printers.py")
  add_test(NAME Debugger.InstalledViews.LoadByThemselves COMMAND ${session_test} --installed "${CMAKE_BINARY_DIR}"
    $<TARGET_FILE_NAME:ORLFoundation>)
  set_tests_properties(Debugger.Session.RunsAsTheDocumentShows Debugger.InstalledViews.LoadByThemselves
    PROPERTIES TIMEOUT 120)
  # gdb prints text in the character set of its locale.
  set_tests_properties(Debugger.GdbPrinters.ShowWhatTheLibraryMeans Debugger.Session.RunsAsTheDocumentShows
    PROPERTIES ENVIRONMENT "LC_ALL=C.UTF-8")
endif()
