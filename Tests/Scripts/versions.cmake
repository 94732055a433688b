# Two versions of the libraries in one process: a host that is linked to this version, and a plug-in that brings the next
# one. The next version consists of the same objects, except one with a different result, so it costs little to build.
if(NOT ORL_SANITIZE)
  set(next_abi "${PROJECT_VERSION_MAJOR}.9999")
  set(next_folder "${CMAKE_BINARY_DIR}/next")

  function(orl_next_version library)
    cmake_parse_arguments(arg "" "REPLACE" "WITH;LINK" ${ARGN})
    set(objects "$<TARGET_OBJECTS:${library}_objects>")
    if(arg_REPLACE)
      set(objects "$<FILTER:${objects},EXCLUDE,${arg_REPLACE}>")
    endif()
    add_library(${library}_next SHARED ${objects} ${arg_WITH})
    target_include_directories(${library}_next PRIVATE $<TARGET_PROPERTY:${library},INCLUDE_DIRECTORIES>
      $<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>)
    target_compile_definitions(${library}_next PRIVATE ${library}_BUILDING)
    target_link_libraries(${library}_next PRIVATE ${arg_LINK} orl_strict)
    set_target_properties(${library}_next PROPERTIES LINKER_LANGUAGE CXX INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON
      RUNTIME_OUTPUT_DIRECTORY "${next_folder}" LIBRARY_OUTPUT_DIRECTORY "${next_folder}"
      ARCHIVE_OUTPUT_DIRECTORY "${next_folder}")
    orl_set_abi(${library}_next ${library} ${next_abi})
  endfunction()

  orl_next_version(tvxmediatypes)
  orl_next_version(CRV)
  orl_next_version(tvxcore LINK Boost::headers ${ORL_BOOST_THREAD} ${ORL_SYNCHRONIZATION})
  orl_next_version(ORLFoundation REPLACE "/ColorSafe[.]cpp[.]o" WITH Versions/NextColorSafe.cpp
    LINK tvxcore_next tvxmediatypes_next CRV_next Boost::headers ${ORL_BOOST_THREAD} ${ORL_URING} ${ORL_SQLITE} ${ORL_PNG}
         ${ORL_SYSTEM_LIBRARIES})

  # The plug-in is not optimised and exports whatever it compiles, so that each call which a compiler may inline is a
  # symbol that the loader binds.
  add_library(versions_use OBJECT Versions/UseLibrary.cpp)
  target_link_libraries(versions_use PRIVATE ORLFoundation orl_strict)
  set_target_properties(versions_use PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
  target_compile_options(versions_use PRIVATE -O0)
  add_library(versions_plug_in MODULE Versions/PlugIn.cpp $<TARGET_OBJECTS:versions_use>)
  target_link_libraries(versions_plug_in PRIVATE ORLFoundation_next tvxcore_next tvxmediatypes_next CRV_next
    ${ORL_BOOST_THREAD} orl_strict)
  set_target_properties(versions_plug_in PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${next_folder}"
    RUNTIME_OUTPUT_DIRECTORY "${next_folder}" INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)

  add_executable(versions_host Versions/Host.cpp Versions/Host${ORL_PLATFORM}.cpp $<TARGET_OBJECTS:versions_use>)
  target_link_libraries(versions_host PRIVATE ORLFoundation orl_strict ${CMAKE_DL_LIBS})
  add_dependencies(versions_host versions_plug_in)

  add_test(NAME Package.TwoVersionsInOneProcess_EachUserHasItsOwn
    COMMAND versions_host "$<TARGET_FILE:versions_plug_in>" ${ORL_ABI} ${next_abi})
  set_tests_properties(Package.TwoVersionsInOneProcess_EachUserHasItsOwn PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT}
    ENVIRONMENT "XDG_DATA_HOME=${CMAKE_BINARY_DIR}/versions-settings")
endif()
