# The first test makes the packages from the build; the other tests use these packages.
if(NOT ORL_SANITIZE AND ORL_BUILD_TOOLS)
  # Adds a test that runs Tests/Packages/<script>.cmake on the packages; further arguments are variables for the script.
  function(orl_package_test name script)
    set(definitions "")
    foreach(definition IN LISTS ARGN)
      list(APPEND definitions -D "${definition}")
    endforeach()
    add_test(NAME Package.${name} COMMAND ${CMAKE_COMMAND} -D BUILD_DIR=${CMAKE_BINARY_DIR} -D SOURCE_DIR=${PROJECT_SOURCE_DIR}
      -D VERSION=${PROJECT_VERSION} -D ABI=${ORL_ABI} -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} ${definitions}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/Packages/${script}.cmake)
    set_tests_properties(Package.${name} PROPERTIES TIMEOUT 300 FIXTURES_REQUIRED orl_packages)
  endfunction()

  set(generator DEB)
  if(WIN32)
    set(generator ZIP)
  endif()
  orl_package_test(PackagesAreMade make GENERATOR=${generator} CPACK=${CMAKE_CPACK_COMMAND})
  set_tests_properties(Package.PackagesAreMade PROPERTIES FIXTURES_REQUIRED "" FIXTURES_SETUP orl_packages)
  if(WIN32)
    orl_package_test(WindowsArchiveRunsAlone alone)
  else()
    orl_package_test(DebianPackagesAreComplete debian)
    orl_package_test(DebianPackagesHaveNoLintianErrors lintian)
  endif()

  # Builds each example in an empty folder. Gallery draws with the picture code of Waveform, and its
  # plug-ins use the configuration of PlugIns.
  set(BlockCache_run PROGRAM=example_block_cache "EXPECTED=^sum [1-9][0-9]+, then [1-9][0-9]+. 65536 bytes in the cache"
    "ARGUMENTS=../BlockCache/BlockCache.cpp 1")
  set(CutList_run PROGRAM=example_cut_list "EXPECTED=^001  A012C004 V     01.00.00.00  00.00.04.00     120 frames"
    ARGUMENTS=../CutList/harbour_reel.edl)
  set(FirstSteps_run PROGRAM=example_work_queue "EXPECTED=^1 [+] 2 [+] ... [+] 1000 = 500500")
  set(Gallery_run "BESIDE=Waveform PlugIns" PROGRAM=example_gallery "EXPECTED=signals  en_US  Signals to measure by" ARGUMENTS=sheet.png)
  set(PlugIns_run PROGRAM=example_plugins "EXPECTED=  1  invert           -0.20  0.50 -1.00  0.00")
  set(Waveform_run PROGRAM=example_waveform "EXPECTED=^usage: example_waveform")
  set(WindowPlace_run PROGRAM=example_window_place "EXPECTED=The window stands at [0-9]+, [0-9]+")
  file(GLOB examples CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/Examples/*/CMakeLists.txt")
  foreach(file IN LISTS examples)
    get_filename_component(folder "${file}" DIRECTORY)
    get_filename_component(example "${folder}" NAME)
    orl_package_test(Example${example}BuildsInAnEmptyFolder example EXAMPLE=${example} ${${example}_run})
  endforeach()

  set(compilers g++ clang++)
  if(WIN32)
    set(compilers mingw)
  endif()
  foreach(compiler IN LISTS compilers)
    foreach(standard default 17 20 23)
      orl_package_test(ClientBuilds.${compiler}.${standard} client COMPILER=${compiler} STANDARD=${standard})
    endforeach()
  endforeach()
endif()
