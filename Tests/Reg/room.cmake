# Tests of orl reg and its parts.
set(orl_folder "${PROJECT_SOURCE_DIR}/Tools/orl")
file(GLOB reg_files CONFIGURE_DEPENDS "${orl_folder}/Reg/RegFile*.cpp")
target_sources(${room_target} PRIVATE ${reg_files} "${orl_folder}/Reg/RegKeyName.cpp"
  "${orl_folder}/Reg/RegValueText.cpp" "${orl_folder}/Common/Text.cpp" "${orl_folder}/Common/Terminal/TextWidth.cpp" "${orl_folder}/Common/Failure.cpp")
target_include_directories(${room_target} PRIVATE "${orl_folder}" "${orl_folder}/Common" "${orl_folder}/Common/Terminal")
target_compile_definitions(${room_target} PRIVATE ORL_FUZZ_CORPUS="${PROJECT_SOURCE_DIR}/Fuzz/Corpus")
add_dependencies(${room_target} orl)
