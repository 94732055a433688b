// How much of a terminal's line a text takes.
#pragma once

#include <cstddef>
#include <string>

namespace orl {

/// Columns that a UTF-8 text takes on a terminal: two for a wide character, none for one that joins the character before it.
/// A byte that is no UTF-8 counts as one.
std::size_t ColumnsOf(const std::string& inText);

/// The longest start of a text that takes at most that many columns; no character is cut.
std::string StartOf(const std::string& inText, std::size_t inColumns);

/// The longest end of a text that takes at most that many columns. It begins with a character that takes a column.
std::string TailOf(const std::string& inText, std::size_t inColumns);

} // namespace orl
