# The tests bind references to misaligned atomic numbers and pointers.
if(ORL_SANITIZE)
  set_source_files_properties(Objects/AtomicTest.cpp PROPERTIES COMPILE_OPTIONS "-fno-sanitize=alignment")
endif()
