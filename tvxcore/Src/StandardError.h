// Reports to standard error.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace debug {

/// Writes the bytes to standard error and behind them inEnd, with no other text of this library between. Never throws,
/// never waits for somebody to read for longer than a moment, and drops what cannot be written: a report must not hold
/// a process back. The calling thread's errno or last error stays as it is.
void WriteStandardError(const char* inBytes, std::size_t inCount, const char* inEnd = "") noexcept;

/// Prints one line and its end in one piece. Takes no memory and never throws: a report may come from anywhere. What
/// a screenful does not hold is cut off.
void WriteStandardErrorLine(const char* inFormat, ...) noexcept __attribute__((format(printf, 1, 2)));

} // namespace debug
} // namespace tvxcore
