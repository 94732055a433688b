// Reports to standard error.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace debug {

/// Writes the bytes and then inEnd to standard error, with no other output from this library between them. Never
/// throws. Never blocks for long on a reader, and drops what cannot be written. Preserves the calling thread's errno or
/// last error.
void WriteStandardError(const char* inBytes, std::size_t inCount, const char* inEnd = "") noexcept;

/// Formats one line and writes it with a line end. Allocates no memory and never throws, so it may be called
/// anywhere. Truncates a line that exceeds its buffer.
void WriteStandardErrorLine(const char* inFormat, ...) noexcept __attribute__((format(printf, 1, 2)));

} // namespace debug
} // namespace tvxcore
