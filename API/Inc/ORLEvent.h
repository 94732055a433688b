// Floor: Threads
// Events: one thread signals, one waiting thread is let through.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <ORLResult.h>

namespace ORL {

/// What every event has in common: the operation that signals it.
class ORL_API EventBase
{
public:
    EventBase(const EventBase&) = delete;
    EventBase& operator=(const EventBase&) = delete;

protected:
    EventBase() = default;
    ~EventBase() = default;

    /// Signals an event. Asserts "eventOK" and throws EventFailure when the system refuses.
    static void SetEvent(void* inEvent);
};

/// An event of the system. Manual reset: a signal stays and lets everyone through. Otherwise each signal lets one
/// waiting thread through and is used up by it.
/// The constructor asserts "mEvent" and throws EventFailure when the system gives no event.
template <bool kManualReset, bool kInitiallySignalled>
class ORL_API Event : public EventBase
{
protected:
    Event();
    ~Event();

    void* mEvent; // the handle of the system's event
};

extern template class Event<false, false>;

/// An event that resets itself, unsignalled at first.
///
/// Signals do not add up: two calls of Signal with nobody waiting leave one signal.
/// Owner:    whoever made it. It may be destroyed as soon as no thread waits and every Signal has begun to return.
/// Threads:  every operation may be called from any thread.
/// Time:     milliseconds; -1 waits for ever, 0 only asks.
/// Failure:  the constructor and Signal throw EventFailure. WaitForSignal throws nothing.
class ORL_API WaitableObject : public Event<false, false>
{
public:
    WaitableObject();
    ~WaitableObject();

    /// Lets one thread through: one that waits now, or else the next one to wait.
    void Signal();

    /// kSuccess: the signal was there and is used up. kWaitTimeout: the time ran out first. kWaitFailed: the system
    /// could not wait. The time is taken as unsigned, so that any negative time but -1 is a wait of several weeks.
    Result WaitForSignal(int inMilliseconds);
};

} // namespace ORL
