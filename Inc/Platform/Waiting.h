// Floor: Platform
// What a thread that has to wait asks of the system.
#pragma once

namespace ORL {
namespace Sync {
namespace Platform {

/// The processors that the calling thread may run on, 1 at least.
int CountProcessors_Impl();

/// Sleeps that many milliseconds at least. An early wake-up by the system does not shorten it.
void SleepMilliseconds_Impl(int inMilliseconds);

} // namespace Platform
} // namespace Sync
} // namespace ORL
