// Floor: Threads
// What the waiting algorithms of the library are made of: atomics, locks, sleeping, memory.
//
// Gate, gate pool, request pool and busy list are templates over a policy. The library instantiates them with
// SystemPolicy; the model checks instantiate the same templates with a policy whose every operation is a choice of the
// checker, and other tests with one whose clock they move. A policy has what SystemPolicy has:
//
//   Flag, Word            an atomic boolean and an atomic unsigned 32-bit word; the operations on them are sequentially
//                         consistent
//   Guarded<T>            a value under a lock, reached through Read and Write alone, so that a checker sees a touch
//                         without the lock
//   Mutex, MutexLock      a lock that can be slept under, and its scope; MutexLock can be unlocked and locked again
//   Condition             where threads sleep: SleepOn, SleepOnFor, NotifyAll
//   Lock, LockScope       the recursive lock of everything else, and its scope; TryLockScope takes it only if that needs no
//                         waiting
//   New, Delete           objects
//   StlAllocator<T>       where containers take their memory
//   Pause, SpinTurns      the wait of a thread that expects its event at once: how many turns it looks on, and what it does in
//                         each; 0 turns where that cannot pay
//   PatientTurns          the same for a thread whose event is the work of threads that may have to be woken first
//   GiveWay               lets other threads run before something is tried again, in the end those of lower priority too; gets
//                         the number of tries before this one
//   SleepMilliseconds     a plain sleep
//   Gate, RetrieveGate, ReturnGate
//                         the gate and its pool, for those who borrow one
//   Keeps                 whether a step stays in: always in the product; a model check that leaves one out must fail
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

/// The steps that the model checks leave out one by one, to prove that they would notice.
enum class Step {
    kGateSecondRead,            // WaitableGate::Wait reads the flag again under the mutex
    kGateGenerationEndsSleep,   // what ends a sleep is a new generation, not the flag
    kGatePoolClosesFirst,       // ReturnGate closes the gate before others can take it
    kRequestPoolClaims,         // a record is claimed by compare-and-set, not by look and store
    kBusyListOpensGate,         // the removal that empties the list opens the gate
    kBusyListCountsWaiters,     // only the last waiter gives the gate back
    kFlushWaitsForTheEarlierOne, // a claimed flush waits until the items of the one before have left
    kFlushGivesWay,              // a flush that cannot claim the record lets others run before it tries again
};

struct SystemPolicy
{
    static constexpr bool Keeps(Step) { return true; }

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

    /// Without an end. Without memory for the sleep it returns after a millisecond, as from a wake-up without a cause.
    static void SleepOn(Condition& ioCondition, MutexLock& ioLock);
    /// False when the time ran out.
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
    static int PatientTurns();
    static void GiveWay(int inTurn);
    static void SleepMilliseconds(int inMilliseconds);

    using Gate = WaitableGate;
    static Gate* RetrieveGate() { return WaitableGatePool::RetrieveGate(); }
    static void ReturnGate(Gate* inGate) { WaitableGatePool::ReturnGate(inGate); }
};

} // namespace Sync
} // namespace ORL
