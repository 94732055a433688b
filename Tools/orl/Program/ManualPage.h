// The manual page orl(1).
#pragma once

#include "CommandTable.h"

#include <string>
#include <vector>

namespace orl {

/// Returns the page as man(7) source.
std::string ManualPageOf(const std::vector<CommandEntry>& inProgram);

} // namespace orl
