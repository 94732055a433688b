// Floor: Threads
// The primitives of the library's synchronisation algorithms: atomics, locks, sleeping, memory.
//
// Gate, gate pool, request pool and busy list are templates over a policy. The library instantiates them with
// SystemPolicy; the model checks use a policy in which the checker controls every operation, and other tests use one
// whose clock the test sets. A policy has the members of SystemPolicy:
//
//   Flag, Word            an atomic boolean and an atomic unsigned 32-bit word; operations are sequentially consistent
//   Guarded<T>            a value that a lock guards, accessed only through Read and Write, so that a checker detects
//                         an access without the lock
//   Mutex, MutexLock      a lock for condition variables, and its scope; MutexLock can be unlocked and locked again
//   Condition             a condition variable: SleepOn, SleepOnFor, NotifyAll
//   Lock, LockScope       the recursive lock for everything else, and its scope; TryLockScope only tries to lock
//   New, Delete           create and delete objects
//   StlAllocator<T>       the allocator of containers
//   Pause, SpinTurns      one turn of a spin, and the number of turns for an event that is expected at once: 0 if
//                         spinning is useless, as on one processor
//   LongSpinTurns         the number of turns if the event depends on threads that may have to be woken first
//   YieldOrSleep          yields before a retry, after several tries also to threads of lower priority; its argument
//                         is the number of earlier tries
//   SleepMilliseconds     a plain sleep
//   Gate, RetrieveGate, ReturnGate
//                         the gate, and its pool
//   Executes              whether a step is executed: always true in the library; without the step a model check fails
#pragma once

#include <ORLAtomic.h>
#include <ORLCriticalSection.h>
#include <ORLWaitableGate.h>

#include <tvxcore/SmallBlockAllocator.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>

#include <atomic>
#include <cstdint>

namespace ORL {
namespace Sync {

/// Steps that the model checks omit one by one, to prove that they detect each omission.
enum class Step {
    kGateSecondRead,          // WaitableGate::Wait reads the flag again under the mutex
    kGateGenerationEndsSleep, // a new generation, not the flag, ends a sleep
    kGatePoolClosesFirst,     // ReturnGate closes the gate before other threads can take it
    kRequestPoolClaims,       // a record is claimed by compare-and-set, not by a load and a store
    kBusyListOpensGate,       // the removal of the last request opens the gate
    kBusyListCountsWaiters,   // only the last waiter returns the gate
    kFlushWaitsForPrevious,   // after its claim a flush waits until the items of the previous one have left
    kFlushYields,             // a flush that cannot claim the object yields before it retries
};

struct SystemPolicy
{
    static constexpr bool Executes(Step) { return true; }

    using Flag = std::atomic<bool>;
    static bool CompareAndSet(Flag& ioTarget, bool inExpected, bool inNew)
    {
        return ioTarget.compare_exchange_strong(inExpected, inNew);
    }

    using Word = std::uint32_t;
    static bool CompareAndSet(Word& ioTarget, std::uint32_t inExpected, std::uint32_t inNew)
    {
        return AtomicCompareAndSet(ioTarget, inExpected, inNew);
    }
    static std::uint32_t Increment(Word& ioTarget) { return AtomicIncrement(ioTarget); }
    static std::uint32_t Decrement(Word& ioTarget) { return AtomicDecrement(ioTarget); }
    static std::uint32_t Exchange(Word& ioTarget, std::uint32_t inNew) { return AtomicExchange(ioTarget, inNew); }
    static std::uint32_t ReadWord(Word& ioTarget) { return AtomicRead(ioTarget); }

    template <class T>
    using Guarded = T;
    template <class T>
    static const T& Read(const T& inValue)
    {
        return inValue;
    }
    template <class T>
    static T& Write(T& ioValue)
    {
        return ioValue;
    }

    using Mutex = boost::mutex;
    using MutexLock = boost::unique_lock<boost::mutex>;
    using Condition = boost::condition_variable;

    /// Sleeps without a time limit. If out of memory, returns after a millisecond, like a spurious wake-up.
    static void SleepOn(Condition& ioCondition, MutexLock& ioLock);
    /// Returns false on a timeout.
    static bool SleepOnFor(Condition& ioCondition, MutexLock& ioLock, int inMilliseconds)
    {
        return ioCondition.timed_wait(ioLock, boost::posix_time::milliseconds(inMilliseconds));
    }
    static void NotifyAll(Condition& ioCondition) { ioCondition.notify_all(); }

    using Lock = CriticalSection;
    using LockScope = CriticalSectionLock;
    using TryLockScope = CriticalSectionTryLock;

    template <class T>
    static T* New()
    {
        return new T;
    }
    template <class T>
    static void Delete(T* inObject)
    {
        delete inObject;
    }

    template <class T>
    using StlAllocator = tvxcore::utility::SmallBlockAllocator::STLAllocator<T>;

    static void Pause(int inTurn);
    static int SpinTurns();
    static int LongSpinTurns();
    static void YieldOrSleep(int inTurn);
    static void SleepMilliseconds(int inMilliseconds);

    using Gate = WaitableGate;
    static Gate* RetrieveGate() { return WaitableGatePool::RetrieveGate(); }
    static void ReturnGate(Gate* inGate) { WaitableGatePool::ReturnGate(inGate); }
};

} // namespace Sync
} // namespace ORL
