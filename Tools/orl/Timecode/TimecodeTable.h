// All formats at a glance.
#pragma once

namespace orl {

/// A row for each format: its rate, the digits of the last field, the separators, how many frames its day has, and a
/// label. All but names and rates is asked of the library.
void PrintTimecodeTable(bool inAsJson);

} // namespace orl
