# Install rules for each component, and the CMake package that find_package(ORLFoundation) finds.
#   runtime  the libraries
#   dev      headers, links, CMake and pkg-config files, debugger views
#   tools    the program orl, its manual page and its completions
#   doc      the documents, and the HTML reference if it has been made
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ORLFoundation")

install(TARGETS tvxmediatypes tvxcore CRV ORLFoundation EXPORT ORLFoundationTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
if(TARGET orl)
  install(TARGETS orl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  if(NOT WIN32)
    include(OrlToolTexts)
  endif()
endif()
install(DIRECTORY API/Inc/ tvxcore/Inc/ tvxmediatypes/Inc/ CRV/Inc/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(FILES "${PROJECT_BINARY_DIR}/include/ORLVersion.h" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation
  COMPONENT dev)
install(FILES Debug/orl_printers.py Debug/orl.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/ORLFoundation/debug COMPONENT dev)
if(NOT WIN32)
  # GDB looks beside the library, else in its own folder of scripts, which it trusts. In /usr the file must be in that
  # folder alone: GDB does not trust /usr/lib, and a file that it finds there ends the search. CPack installs to /usr
  # below a staging folder.
  install(CODE "
    set(folder \"${CMAKE_INSTALL_LIBDIR}\")
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\" OR CMAKE_INSTALL_PREFIX MATCHES \"/_CPack_Packages/.*/usr$\")
      set(folder \"share/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}\")
    endif()
    file(INSTALL DESTINATION \"\${CMAKE_INSTALL_PREFIX}/\${folder}\" TYPE FILE
      RENAME \"libORLFoundation.so.${PROJECT_VERSION}-gdb.py\" FILES \"${PROJECT_SOURCE_DIR}/Debug/load_views.py\")"
    COMPONENT dev)
endif()
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY Docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
set(ORL_REFERENCE_FOLDER "" CACHE PATH "The folder of the HTML reference that Scripts/docs makes, to install it too")
if(ORL_REFERENCE_FOLDER)
  install(DIRECTORY "${ORL_REFERENCE_FOLDER}/" DESTINATION ${CMAKE_INSTALL_DOCDIR}/html COMPONENT doc)
endif()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

set(ORL_PACKAGE_NEEDS_BOOST_THREAD ON)
if(WIN32)
  # Boost.Thread has no package for this compiler, so the package includes our build of it.
  set(ORL_PACKAGE_NEEDS_BOOST_THREAD OFF)
  install(TARGETS orl_boost_thread orl_boost_headers EXPORT ORLFoundationTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  install(FILES ${ORL_TOOLCHAIN_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()

install(EXPORT ORLFoundationTargets NAMESPACE ORL:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(CMake/ORLFoundationConfig.cmake.in
  "${PROJECT_BINARY_DIR}/ORLFoundationConfig.cmake" INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ORLFoundationConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ORLFoundationConfig.cmake" "${PROJECT_BINARY_DIR}/ORLFoundationConfigVersion.cmake"
  CMake/OrlTargetResources.cmake DESTINATION ${package_dir} COMPONENT dev)

# The paths in the pkg-config file are relative to its own folder, so that the installed tree can be moved.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH ORL_PREFIX_FROM_PC "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" ORL_PREFIX_FROM_PC "${ORL_PREFIX_FROM_PC}")
configure_file(CMake/orlfoundation.pc.in "${PROJECT_BINARY_DIR}/orlfoundation.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/orlfoundation.pc" DESTINATION ${pkgconfig_dir} COMPONENT dev)
