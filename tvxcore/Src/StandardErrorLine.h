// One line of report to standard error.
#pragma once

namespace tvxcore {
namespace debug {

/// Prints the line and its end in one piece. Takes no memory and never throws: a report may come from anywhere. What
/// a screenful does not hold is cut off.
void WriteStandardErrorLine(const char* inFormat, ...) noexcept __attribute__((format(printf, 1, 2)));

} // namespace debug
} // namespace tvxcore
