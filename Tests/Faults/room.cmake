# The sweeps intercept requests for OS pages: the linker redirects calls to these functions to the wrappers.
target_sources(${room_target} PRIVATE Faults/MemoryFaults.cpp)
if(WIN32)
  set(mangled_size y)
else()
  set(mangled_size m)
endif()
target_compile_definitions(${room_target} PRIVATE ORL_MANGLED_SIZE="${mangled_size}")
foreach(symbol _ZN3ORL10PageMemory8Platform18AllocatePages_ImplE _ZN3ORL10PageMemory8Platform14FreePages_ImplEPv)
  target_link_options(${room_target} PRIVATE -Wl,--wrap=${symbol}${mangled_size})
endforeach()
add_dependencies(${room_target} resource_files)

# On Linux the tests count the existing bitmaps, and supply memory to the libraries that the PNG decoder uses.
if(NOT WIN32)
  foreach(symbol
      _ZN3ORL6Images8Platform17CreateBitmap_ImplEPNS1_7PictureERSt10unique_ptrIA_hSt14default_deleteIS5_EERP9HBITMAP__
      _ZN3ORL7Modules8Platform15LoadBitmap_ImplERKNS1_6SourceEt
      _ZN3ORL6Images8Platform17DeleteBitmap_ImplEP9HBITMAP__
      spng_ctx_new)
    target_link_options(${room_target} PRIVATE -Wl,--wrap=${symbol})
  endforeach()
  target_link_libraries(${room_target} PRIVATE PkgConfig::SPNG PkgConfig::LIBDEFLATE)
  add_dependencies(${room_target} images_pictures)
  target_compile_definitions(${room_target} PRIVATE "ORL_PLUG_IN_SUFFIX=\"${CMAKE_SHARED_MODULE_SUFFIX}\""
    ORL_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/Fuzz/Corpus" ORL_PICTURES="${CMAKE_CURRENT_SOURCE_DIR}/Images/Data")
endif()
