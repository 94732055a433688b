// The system's source of random numbers.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace Platform {

/// Fills outBytes with cryptographically secure random bytes. Returns false if the system provides none.
bool FillRandom_Impl(void* outBytes, std::size_t inCount) noexcept;

} // namespace Platform
} // namespace utility
} // namespace tvxcore
