// The manual page orl(1).
#pragma once

#include "CommandTable.h"

#include <string>
#include <vector>

namespace orl {

/// Returns the page in the macros of man(7).
std::string ManualPageOf(const std::vector<CommandEntry>& inProgram);

} // namespace orl
