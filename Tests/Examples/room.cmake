# The tests run the example hosts that the build made beside them.
add_dependencies(${room_target} example_plugins)
