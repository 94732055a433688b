# The tests of misaligned atomic numbers and pointers make references to them.
if(ORL_SANITIZE)
  set_source_files_properties(Objects/AtomicTest.cpp PROPERTIES COMPILE_OPTIONS "-fno-sanitize=alignment")
endif()
