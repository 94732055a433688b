# The sweeps stand between the libraries and their memory: the linker sends the calls of these functions to the wrappers.
target_sources(${room_target} PRIVATE Faults/MemoryFaults.cpp)
if(WIN32)
  set(mangled_size y)
else()
  set(mangled_size m)
endif()
target_compile_definitions(${room_target} PRIVATE ORL_MANGLED_SIZE="${mangled_size}")
foreach(symbol _ZN7tvxcore7utility19SmallBlockAllocator8AllocateE _ZN7tvxcore7utility19SmallBlockAllocator7DisposeEPv
               _ZN3ORL10PageMemory8Platform18AllocatePages_ImplE _ZN3ORL10PageMemory8Platform14FreePages_ImplEPv)
  target_link_options(${room_target} PRIVATE -Wl,--wrap=${symbol}${mangled_size})
endforeach()
