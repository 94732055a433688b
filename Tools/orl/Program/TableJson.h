// The table of commands as JSON.
#pragma once

#include "CommandTable.h"

#include <string>
#include <vector>

namespace orl {

/// Returns one JSON array with an object for each command.
std::string JsonOf(const std::vector<CommandEntry>& inCommands);

} // namespace orl
