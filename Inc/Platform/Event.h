// Floor: Platform
// Events of the system, by handle.
#pragma once

#include <cstdint>

namespace ORL {
namespace Events {
namespace Platform {

/// The timeout for an unlimited wait.
inline constexpr std::uint32_t kEndless = 0xFFFFFFFFu;

/// The result of a wait.
enum class WaitOutcome { kSignalled, kTimeout, kFailed };

/// Creates an unnamed event. A manual-reset event stays signalled; an auto-reset event is reset when it releases a
/// waiter. Returns 0 and the handle, which is never null; or the system error and null.
unsigned long CreateEvent_Impl(bool inManualReset, bool inInitiallySignalled, void*& outEvent);

/// Destroys an event without waiters. A SetEvent_Impl call that has signalled the event may still be in progress.
/// Ignores null.
void DestroyEvent_Impl(void* inEvent);

/// Signals the event. The released thread sees all earlier writes of the caller. Returns 0, or the system error: 6 for
/// a null handle.
unsigned long SetEvent_Impl(void* inEvent);

/// Waits up to that many milliseconds for a signal; 0 polls. Fails for a null handle.
WaitOutcome WaitForEvent_Impl(void* inEvent, std::uint32_t inMilliseconds);

/// For tests: while installed, each CreateEvent_Impl first calls this function, and fails with its result unless that
/// is 0. Null removes the function.
using CreateFault = unsigned long (*)();
void InstallCreateFault(CreateFault inFault);

} // namespace Platform
} // namespace Events
} // namespace ORL
