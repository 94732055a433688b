// The subcommand "orl verify".
#pragma once

#include <CLI/CLI.hpp>

namespace orl {

/// orl verify FOLDER...: reads the files in a checksum list back unbuffered, and compares.
void AddVerify(CLI::App& ioProgram);

} // namespace orl
