# Install rules and the package that find_package(ORLFoundation) finds.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ORLFoundation")

install(TARGETS tvxmediatypes tvxcore CRV ORLFoundation EXPORT ORLFoundationTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY API/Inc/ tvxcore/Inc/ tvxmediatypes/Inc/ CRV/Inc/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation FILES_MATCHING PATTERN "*.h")
install(FILES "${CMAKE_BINARY_DIR}/include/ORLVersion.h" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation)
install(FILES Debug/orl_printers.py Debug/orl.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/ORLFoundation/debug)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses/ORLFoundation OPTIONAL)

set(ORL_PACKAGE_NEEDS_BOOST_THREAD ON)
if(WIN32)
  # Boost.Thread has no package for this compiler, so the package includes our build of it.
  set(ORL_PACKAGE_NEEDS_BOOST_THREAD OFF)
  install(TARGETS orl_boost_thread orl_boost_headers EXPORT ORLFoundationTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

install(EXPORT ORLFoundationTargets NAMESPACE ORL:: DESTINATION ${package_dir})
configure_package_config_file(CMake/ORLFoundationConfig.cmake.in
  "${CMAKE_BINARY_DIR}/ORLFoundationConfig.cmake" INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${CMAKE_BINARY_DIR}/ORLFoundationConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/ORLFoundationConfig.cmake" "${CMAKE_BINARY_DIR}/ORLFoundationConfigVersion.cmake"
  CMake/OrlTargetResources.cmake DESTINATION ${package_dir})
