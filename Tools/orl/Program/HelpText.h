// The text of "orl help" and "--help".
#pragma once

#include "CommandTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// Wraps the words into lines of at most inColumns; a longer word has a line of its own. An empty string yields one
/// empty line.
std::vector<std::string> WrapWords(const std::string& inText, std::size_t inColumns);

/// inProgram is the table of the whole program, from which the descriptions of subcommands are taken. Lines have at
/// most inColumns columns, or 40 if inColumns is less.
std::string HelpTextOf(const CommandEntry& inCommand, const std::vector<CommandEntry>& inProgram,
                       std::size_t inColumns);

} // namespace orl
