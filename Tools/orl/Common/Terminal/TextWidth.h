// The width of text on a terminal.
#pragma once

#include <cstddef>
#include <string>

namespace orl {

/// Returns the width of a UTF-8 string in terminal columns: two for a wide character, none for a combining character,
/// one for an invalid byte and for any other character.
std::size_t ColumnsOf(const std::string& inText);

/// Returns the longest prefix of at most inColumns columns, without splitting a character.
std::string PrefixOfWidth(const std::string& inText, std::size_t inColumns);

/// Returns the longest suffix of at most inColumns columns. The suffix never starts with a combining character.
std::string SuffixOfWidth(const std::string& inText, std::size_t inColumns);

} // namespace orl
