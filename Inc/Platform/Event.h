// Floor: Platform
// Events of the system, by handle.
#pragma once

#include <cstdint>

namespace ORL {
namespace Events {
namespace Platform {

/// A number that means an endless wait.
inline constexpr std::uint32_t kEndless = 0xFFFFFFFFu;

/// What a wait came to.
enum class WaitOutcome { kSignalled, kTimeout, kFailed };

/// Makes an unnamed event. A manual-reset event stays signalled; any other is reset by the wait that it ends.
/// Gives 0 and the handle, which is never null; or the system error, and null.
unsigned long CreateEvent_Impl(bool inManualReset, bool inInitiallySignalled, void*& outEvent);

/// Ends the life of an event that no thread waits at. A call of SetEvent_Impl may still be on its way out. Null is
/// ignored.
void DestroyEvent_Impl(void* inEvent);

/// Signals the event; what the caller wrote before is seen by the thread that is let through. Gives 0, or the system
/// error: 6 for a null handle.
unsigned long SetEvent_Impl(void* inEvent);

/// Waits that many milliseconds for a signal, 0 being a poll. Fails for a null handle.
WaitOutcome WaitForEvent_Impl(void* inEvent, std::uint32_t inMilliseconds);

/// For tests: while installed, each CreateEvent_Impl asks this function first and fails with what it gives, unless
/// that is 0. Null takes it away.
using CreateFault = unsigned long (*)();
void InstallCreateFault(CreateFault inFault);

} // namespace Platform
} // namespace Events
} // namespace ORL
