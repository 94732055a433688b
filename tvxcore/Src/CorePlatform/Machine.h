// The machine's resources.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace utility {
namespace Platform {

/// Returns the physical memory in bytes, or 0 if the system does not report it.
std::uint64_t TotalPhysicalMemory_Impl() noexcept;

} // namespace Platform
} // namespace utility
} // namespace tvxcore
