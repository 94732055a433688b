// Floor: Platform
// The clock of the process.
#pragma once

#include <cstdint>

namespace ORL {
namespace ProcessClock {
namespace Platform {

/// Returns the milliseconds since the process began. On Linux the clock never goes backwards; on Windows it is the C
/// runtime's clock().
std::int64_t GetMilliseconds_Impl() noexcept;

} // namespace Platform
} // namespace ProcessClock
} // namespace ORL
