// The subcommands of orl. Each stands in a source of its own and adds itself to the program.
#pragma once

#include <CLI/CLI.hpp>

namespace orl {

/// orl info [PATH]: version, platform, drive table and the volume of a path.
void AddInfo(CLI::App& ioProgram);

} // namespace orl
