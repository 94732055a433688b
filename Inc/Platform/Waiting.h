// Floor: Platform
// The system function that puts the calling thread to sleep.
#pragma once

namespace ORL {
namespace Sync {
namespace Platform {

/// Sleeps at least that many milliseconds. Continues an interrupted sleep.
void SleepMilliseconds_Impl(int inMilliseconds);

} // namespace Platform
} // namespace Sync
} // namespace ORL
