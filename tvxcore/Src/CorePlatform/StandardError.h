// Where reports go when no host has installed anything better.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace debug {
namespace Platform {

/// Writes the bytes to standard error. Never throws, never waits for somebody to read for longer than a moment, and
/// drops what cannot be written: a report must not hold a process back.
void WriteStandardError_Impl(const char* inBytes, std::size_t inCount) noexcept;

} // namespace Platform
} // namespace debug
} // namespace tvxcore
