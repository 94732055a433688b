# cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D VERSION=... -D ABI=... -P debian.cmake
# Checks the fields of the Debian packages, runs the unpacked tool, and builds a host against the unpacked packages.
include("${CMAKE_CURRENT_LIST_DIR}/Commands.cmake")

set(work "${BUILD_DIR}/packages")
set(unpacked "${work}/unpacked")
run(dpkg --print-architecture)
string(STRIP "${output}" architecture)

# Fails unless a field of a package has the expected value.
function(expect_field package architecture field expected)
  run(dpkg-deb -f "${work}/${package}_${VERSION}_${architecture}.deb" ${field})
  string(STRIP "${output}" output)
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${package}: ${field} is [${output}], not [${expected}]")
  endif()
endfunction()

set(runtime "orlfoundation${ABI}")
set(same "${runtime} \\(= ${VERSION}\\)")
foreach(dependency libboost-thread1.74.0 libc6 libdeflate0 libspng0 libsqlite3-0 libstdc\\+\\+6 liburing2)
  expect_field(${runtime} ${architecture} Depends "(^|, )${dependency}( |,|$)")
endforeach()
expect_field(${runtime} ${architecture} Section "^libs$")
expect_field(orlfoundation-dev ${architecture} Depends "^${same}, libboost-dev \\(>= 1\\.74\\), libboost-thread-dev \\(>= 1\\.74\\)$")
expect_field(orlfoundation-tools ${architecture} Depends "${same}")
expect_field(orlfoundation-tools ${architecture} Depends "libssl3")
expect_field(orlfoundation-doc all Depends "^$")

run("${unpacked}/usr/bin/orl" --version)
expect_output("orl ${VERSION}\n" "the packaged tool")
foreach(file share/doc/${runtime}/copyright share/doc/ORLFoundation/Docs/abi.md share/ORLFoundation/debug/orl_printers.py
    share/man/man1/orl.1.gz share/bash-completion/completions/orl share/fish/vendor_completions.d/orl.fish
    share/zsh/vendor-completions/_orl
    lib/libORLFoundation.so lib/libORLFoundation.so.${ABI} include/ORLFoundation/ORLFoundation.h)
  if(NOT EXISTS "${unpacked}/usr/${file}")
    message(FATAL_ERROR "the packages have no ${file}")
  endif()
endforeach()

set(host "${work}/host")
file(REMOVE_RECURSE "${host}")
run(${CMAKE_COMMAND} -G Ninja -S "${SOURCE_DIR}/Tests/Consumer" -B "${host}" "-DCMAKE_PREFIX_PATH=${unpacked}/usr")
run(${CMAKE_COMMAND} --build "${host}")
run("${host}/host")
expect_output("${VERSION} clip.mov text of the host's own\n" "the host")
