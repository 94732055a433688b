# The tests deliberately bind references to misaligned atomics, which the alignment sanitizer would report.
if(ORL_SANITIZE)
  set_source_files_properties(Objects/AtomicTest.cpp PROPERTIES COMPILE_OPTIONS "-fno-sanitize=alignment")
endif()
