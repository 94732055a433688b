# The tests run the program that the build made beside them.
add_dependencies(${room_target} orl)
