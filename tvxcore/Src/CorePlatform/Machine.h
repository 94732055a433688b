// What the machine has.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace utility {
namespace Platform {

/// Physical memory in bytes. 0 if the system does not tell.
std::uint64_t TotalPhysicalMemory_Impl() noexcept;

} // namespace Platform
} // namespace utility
} // namespace tvxcore
