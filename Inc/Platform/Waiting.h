// Floor: Platform
// The system functions for waiting threads.
#pragma once

namespace ORL {
namespace Sync {
namespace Platform {

/// Returns the number of processors that the calling thread may run on, at least 1.
int CountProcessors_Impl();

/// Sleeps at least that many milliseconds. An interrupted sleep is continued.
void SleepMilliseconds_Impl(int inMilliseconds);

} // namespace Platform
} // namespace Sync
} // namespace ORL
