# ICU is the reference for UTF conversion and case folding.
if(NOT WIN32)
  target_link_libraries(${room_target} PRIVATE ${ORL_ICU})
endif()

target_compile_definitions(${room_target} PRIVATE TVX_UTF_CORPUS="${PROJECT_SOURCE_DIR}/Fuzz/Corpus/UtfFuzz")
