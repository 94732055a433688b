// An overview of all formats.
#pragma once

namespace orl {

/// Prints a row for each format: its rate, the digits of the last field, the separators, the frames of a day, and a
/// label. Everything except names and rates is queried from the library.
void PrintTimecodeTable(bool inAsJson);

} // namespace orl
