target_compile_definitions(${room_target} PRIVATE ORL_THIS_PROGRAM="$<TARGET_FILE_NAME:${room_target}>")
