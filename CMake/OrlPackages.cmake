# The packages that CPack makes: a Debian package for each component, and one .zip with everything for Windows.
# Scripts/package calls it.
set(CPACK_PACKAGE_NAME orlfoundation)
set(CPACK_PACKAGE_VENDOR "The ORLFoundation developers")
set(CPACK_PACKAGE_CONTACT "The ORLFoundation developers <developers@orlfoundation.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime dev tools doc)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_MONOLITHIC_INSTALL ON)
  set(CPACK_PACKAGE_FILE_NAME "orlfoundation-${PROJECT_VERSION}-windows-x86_64")
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE orlfoundation)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The name of the runtime package contains the ABI number, so that packages of two ABIs can be installed together.
set(runtime_package "orlfoundation${ORL_ABI}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "The shared libraries ORLFoundation, tvxcore, tvxmediatypes and CRV.")
# The loader's cache is rebuilt once after the installation of several packages.
file(WRITE "${PROJECT_BINARY_DIR}/debian/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/debian/triggers")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME orlfoundation-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${runtime_package} (= ${PROJECT_VERSION}), libboost-dev (>= 1.74), libboost-thread-dev (>= 1.74)")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "binutils-mingw-w64-x86-64, cmake, pkg-config")
set(CPACK_DEBIAN_DEV_DESCRIPTION "Headers, CMake package, pkg-config file and debugger views.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orlfoundation-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
  "The program orl streams, ingests and verifies media files\nand reads timecode and settings.")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME orlfoundation-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_DESCRIPTION
  "The guides in Markdown: architecture, ABI, timecode, settings,\nresources and ingest, and the HTML reference.")

# Here dpkg-shlibdeps finds the runtime package's libraries when it determines the dependencies of the tools.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

# What the distribution expects of each package: its licence, its changes, and the reason for the search path $ORIGIN.
function(orl_debian_documents component package)
  set(folder "${PROJECT_BINARY_DIR}/debian/${package}")
  file(CONFIGURE OUTPUT "${folder}/changelog" @ONLY CONTENT "orlfoundation (@PROJECT_VERSION@) unstable; urgency=medium

  * See CHANGELOG.md in orlfoundation-doc.

 -- @CPACK_PACKAGE_CONTACT@  Sun, 22 Nov 2026 12:00:00 +0000
")
  execute_process(COMMAND gzip -9nf "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${folder}/changelog.gz" DESTINATION share/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES LICENSE DESTINATION share/doc/${package} RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
  if(ARGN)
    file(WRITE "${folder}/overrides"
      "# The libraries find each other beside themselves, so that an installed tree can be moved.\n${package}: custom-library-search-path\n")
    install(FILES "${folder}/overrides" DESTINATION share/lintian/overrides RENAME ${package} COMPONENT ${component}
      EXCLUDE_FROM_ALL)
  endif()
endfunction()
orl_debian_documents(runtime ${runtime_package} overrides)
orl_debian_documents(dev orlfoundation-dev)
orl_debian_documents(tools orlfoundation-tools overrides)
orl_debian_documents(doc orlfoundation-doc)
include(CPack)
