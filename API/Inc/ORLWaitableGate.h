// Floor: Threads
// Gates: doors that threads wait at, and the pool that lends them.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ORL {

namespace Sync {
template <class Policy>
class WaitableGateAlgorithm;
} // namespace Sync

/// A door that threads wait at. It starts closed, and may be opened and closed again.
///
/// Opening releases every thread then asleep here, even if the gate is closed at once.
/// Owner:    whoever made it; one lent by the pool goes back there, and goes back open. Destroying a gate opens it
///           first; nobody may come to it any more by then.
/// Threads:  every operation may be called from any thread; mMutex is a leaf lock.
/// Time:     milliseconds; -1 waits for ever, 0 only asks; any other negative time has already run out.
/// Failure:  kWaitTimeout is an answer, not an error. What boost::mutex and boost::condition_variable throw passes
///           through, thread interruption included.
/// Example:
///   gate->Open();
///   ...
///   const bool isOpen = gate->Wait(0) == ORL::kSuccess;
class ORL_API WaitableGate
{
public:
    WaitableGate();
    ~WaitableGate();

    WaitableGate(const WaitableGate&) = delete;
    WaitableGate& operator=(const WaitableGate&) = delete;

    /// kSuccess: the gate is open, or was opened while this thread slept at it. kWaitTimeout: the time ran out.
    /// The time limit counts for each sleep: a wake-up that no opening caused starts it anew.
    /// An open gate and a time of 0 take no lock.
    Result Wait(int inMilliseconds);

    /// Opens the gate and releases everyone waiting at it. Nothing happens at an open gate.
    void Open();

    /// Closes the gate for those who come later. Takes no lock; nothing happens at a closed gate.
    void Close();

    // Gates come from the small block allocator, and so throw std::bad_alloc when memory is out.
    static void* operator new(std::size_t inSize);
    static void operator delete(void* inGate, std::size_t inSize);

private:
    template <class Policy>
    friend class Sync::WaitableGateAlgorithm;

    std::atomic<bool> mIsOpen; // changed and read by compare-and-set alone
    boost::mutex mMutex;       // guards what follows
    boost::condition_variable mCondition;
    std::uint32_t mGeneration;  // raised by each opening that finds waiters
    std::int32_t mWaiterCount;  // threads in the sleeping part of Wait
};

/// A process-wide stack of closed gates, so that a short wait need not build a mutex and a condition variable.
/// Both functions may be called from any thread, and neither ever waits for a gate to come back.
namespace WaitableGatePool {

/// A closed gate that belongs to the caller, the one most recently returned if there is any.
/// Throws std::bad_alloc when memory is out.
ORL_API WaitableGate* RetrieveGate();

/// Takes back a gate, which must be open at the time of the call (input contract). The pool keeps up to ten idle
/// gates and destroys the others.
ORL_API void ReturnGate(WaitableGate* inGate);

} // namespace WaitableGatePool
} // namespace ORL
