// The text of "orl help" and "--help".
#pragma once

#include "CommandTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// Returns the words in lines of at most inColumns; a longer word has a line of its own. An empty text is one empty
/// line.
std::vector<std::string> WrapWords(const std::string& inText, std::size_t inColumns);

/// inPrograms contains the table of the whole program, for the texts of subcommands. Lines are at most inColumns long,
/// but at least 40.
std::string HelpTextOf(const CommandEntry& inCommand, const std::vector<CommandEntry>& inProgram,
                       std::size_t inColumns);

} // namespace orl
