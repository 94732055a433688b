# A plug-in with pictures in every form.
add_library(images_pictures MODULE Resources/PlugIn.cpp)
target_link_libraries(images_pictures PRIVATE orl_strict)
set_target_properties(images_pictures PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
file(GLOB picture_files CONFIGURE_DEPENDS Images/Data/*)
orl_target_resources(images_pictures Images/Data/Pictures.rc DEPENDS ${picture_files})
add_dependencies(${room_target} images_pictures)
target_compile_definitions(${room_target} PRIVATE "ORL_PLUG_IN_SUFFIX=\"${CMAKE_SHARED_MODULE_SUFFIX}\""
  "ORL_MANGLED_SIZE=\"$<IF:$<BOOL:${WIN32}>,y,m>\""
  ORL_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/Fuzz/Corpus" ORL_PICTURES="${CMAKE_CURRENT_SOURCE_DIR}/Images/Data")

# The linker redirects calls to these functions to replacements in the tests, which inject failures of the decoder and
# the system, and count deletions.
foreach(symbol
    _ZN3ORL6Images8Platform17CopyToMemory_ImplEPKv$<IF:$<BOOL:${WIN32}>,y,m>
    _ZN3ORL6Images8Platform17CreateStream_ImplEPNS1_10MemoryCopyE
    _ZN3ORL6Images8Platform21CreateFromStream_ImplEPNS1_6StreamE
    _ZN3ORL6Images8Platform15LockPixels_ImplEPNS1_7PictureEjiRNS1_12LockedPixelsE
    _ZN3ORL6Images8Platform17DeleteBitmap_ImplEP9HBITMAP__)
  target_link_options(${room_target} PRIVATE "-Wl,--wrap=${symbol}")
endforeach()

if(NOT WIN32)
  find_package(PNG REQUIRED)
  pkg_check_modules(X11 REQUIRED IMPORTED_TARGET x11 xfixes)
  target_link_libraries(${room_target} PRIVATE PNG::PNG PkgConfig::SPNG PkgConfig::X11)
endif()

# Compares the bitmaps that orl extracts with those that ImageMagick reads.
if(NOT WIN32)
  find_program(ORL_CONVERT NAMES convert-im6.q16 convert-im7.q16 REQUIRED)
  find_program(ORL_SYSTEM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
  add_test(NAME Images.Oracles.ImageMagickReadsTheSameBitmaps
    COMMAND "${ORL_SYSTEM_PYTHON}" "${CMAKE_CURRENT_SOURCE_DIR}/Images/compare_with_imagemagick.py" $<TARGET_FILE:orl>
            "${ORL_CONVERT}" $<TARGET_FILE:images_pictures> "${CMAKE_CURRENT_SOURCE_DIR}/Images/Data")
  set_tests_properties(Images.Oracles.ImageMagickReadsTheSameBitmaps PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT})
endif()

if(NOT WIN32)
  target_sources(${room_target} PRIVATE Resources/EnglishUserLinuxTest.cpp) # the picture tests expect an English user
endif()
