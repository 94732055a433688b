// Floor: Threads
// Gates that threads wait at, and a pool of gates.
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

/// A gate at which threads wait. A gate starts closed, and may be opened and closed again.
///
/// Opening releases every thread that sleeps at the gate, even if the gate is closed again immediately.
/// Owner:    the creator. Gates must be open when they are returned to the pool. The destructor opens the gate; once it
///           runs, no thread may begin to wait.
/// Threads:  thread-safe. mMutex is a leaf lock.
/// Time:     milliseconds; -1 waits forever, 0 polls; any other negative value times out immediately.
/// Failure:  kWaitTimeout is a result, not an error. Exceptions from boost::mutex and boost::condition_variable
///           propagate, thread interruption included.
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

    /// Returns kSuccess if the gate is open, or was opened while this thread slept; kWaitTimeout on a timeout.
    /// The time limit applies to each sleep: a spurious wake-up restarts it. Takes no lock if the gate is open or the
    /// time is 0.
    Result Wait(int inMilliseconds);

    /// Opens the gate and releases all waiters. Does nothing if the gate is open.
    void Open();

    /// Closes the gate for later callers of Wait. Takes no lock; does nothing if the gate is closed.
    void Close();

    // The small block allocator allocates gates. Throws std::bad_alloc.
    static void* operator new(std::size_t inSize);
    static void operator delete(void* inGate, std::size_t inSize);

private:
    template <class Policy>
    friend class Sync::WaitableGateAlgorithm;

    std::atomic<bool> mIsOpen; // changed and read only by compare-and-set
    boost::mutex mMutex;       // guards the fields below
    boost::condition_variable mCondition;
    std::uint32_t mGeneration; // incremented by each Open that finds waiters
    std::int32_t mWaiterCount; // threads that Wait has registered as waiters
};

/// A process-wide stack of closed gates, so that a short wait need not construct a mutex and a condition variable.
///
/// Owner:    the caller owns a retrieved gate until it returns it.
/// Threads:  thread-safe. Neither function waits for another gate to be returned.
/// Failure:  RetrieveGate throws std::bad_alloc.
namespace WaitableGatePool {

/// Returns a closed gate that belongs to the caller: the most recently returned one, or a new one. Throws
/// std::bad_alloc.
ORL_API WaitableGate* RetrieveGate();

/// Returns a gate to the pool. The gate must be open (input contract). The pool keeps up to ten idle gates and destroys
/// the others.
ORL_API void ReturnGate(WaitableGate* inGate);

} // namespace WaitableGatePool
} // namespace ORL
