// Floor: Threads
// Events: a signal from one thread releases a waiting thread.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <ORLResult.h>

namespace ORL {

/// The common base of all events; see WaitableObject for owner, threads and failures.
class ORL_API EventBase
{
public:
    EventBase(const EventBase&) = delete;
    EventBase& operator=(const EventBase&) = delete;

protected:
    EventBase() = default;
    ~EventBase() = default;

    /// Signals an event. Asserts "eventOK" and throws EventFailure if the system call fails.
    static void SetEvent(void* inEvent);
};

/// An OS event. If kManualReset is true, a signalled event stays signalled and releases every waiter. If kManualReset
/// is false, each signal releases one waiter and resets the event.
/// The constructor asserts "mEvent" and throws EventFailure if the system cannot create the event.
template <bool kManualReset, bool kInitiallySignalled>
class ORL_API Event : public EventBase
{
protected:
    Event();
    ~Event();

    void* mEvent; ///< the OS handle
};

extern template class Event<false, false>;

/// An auto-reset event, initially not signalled.
///
/// Signals do not accumulate: two calls to Signal without a waiter leave one signal.
/// Owner:    the creator. A waiter that a signal has released may destroy the event, even before that call to Signal
///           has returned, if no other thread is waiting.
/// Threads:  thread-safe.
/// Time:     milliseconds; -1 waits forever, 0 polls.
/// Failure:  the constructor and Signal throw EventFailure. WaitForSignal never throws.
class ORL_API WaitableObject : public Event<false, false>
{
public:
    WaitableObject();
    ~WaitableObject();

    /// Releases one thread: a current waiter, or else the next thread that waits.
    void Signal();

    /// Returns kSuccess if the event was signalled, and resets it; kWaitTimeout if the time ran out first; kWaitFailed
    /// if the system could not wait. The time is converted to unsigned, so any negative time other than -1 waits for
    /// several weeks.
    Result WaitForSignal(int inMilliseconds);
};

} // namespace ORL
