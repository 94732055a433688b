# The orl program, which is built beside this one, does the work.
add_dependencies(${bench_target} orl)
