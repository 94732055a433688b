// Floor: Platform
// The clock of the process.
#pragma once

#include <cstdint>

namespace ORL {
namespace ProcessClock {
namespace Platform {

/// Milliseconds since the process began. Never goes backwards on Linux; at home it is the C runtime's clock().
std::int64_t GetMilliseconds_Impl() noexcept;

} // namespace Platform
} // namespace ProcessClock
} // namespace ORL
