# The program runs orl, which is built in the same folder.
add_dependencies(${bench_target} orl)
