// The algorithm of WaitableGate: opening, closing, waiting.
#pragma once

#include <ORLResult.h>
#include <Sync/Policy.h>

#include <cstdint>

namespace ORL {
namespace Sync {

/// Works on any type that has the fields of WaitableGate, with the types that the policy defines.
///
/// No wake-up is lost: Open sets the flag, then locks the mutex; Wait locks the mutex, then reads the flag. So either
/// the waiter sees the flag, or the opener sees the waiter.
template <class Policy>
class WaitableGateAlgorithm
{
public:
    template <class Gate>
    static Result Wait(Gate& ioGate, int inMilliseconds)
    {
        if (IsOpen(ioGate)) {
            return kSuccess;
        }
        if (inMilliseconds == 0 || inMilliseconds < kEndless) {
            return kWaitTimeout;
        }
        return WaitAsleep(ioGate, inMilliseconds, Policy::SpinTurns());
    }

    /// Same as Wait(-1), but spins longer before it sleeps: the threads that will open the gate are expected soon, but
    /// may have to be woken first.
    template <class Gate>
    static Result WaitWithLongSpin(Gate& ioGate)
    {
        return IsOpen(ioGate) ? kSuccess : WaitAsleep(ioGate, kEndless, Policy::LongSpinTurns());
    }

    template <class Gate>
    static void Open(Gate& ioGate)
    {
        if (!Policy::CompareAndSet(ioGate.mIsOpen, false, true)) {
            return;
        }
        typename Policy::MutexLock lock(ioGate.mMutex);
        if (Policy::Read(ioGate.mWaiterCount) > 0) {
            ++Policy::Write(ioGate.mGeneration);
            Policy::NotifyAll(ioGate.mCondition);
        }
    }

    template <class Gate>
    static void Close(Gate& ioGate)
    {
        while (!Policy::CompareAndSet(ioGate.mIsOpen, true, false) && IsOpen(ioGate)) {
        }
    }

    /// Returns the number of threads that Wait has registered as waiters.
    template <class Gate>
    static std::int32_t CountWaiters(Gate& ioGate)
    {
        typename Policy::MutexLock lock(ioGate.mMutex);
        return Policy::Read(ioGate.mWaiterCount);
    }

    /// Returns the number of openings that found waiters.
    template <class Gate>
    static std::uint32_t GetGeneration(Gate& ioGate)
    {
        typename Policy::MutexLock lock(ioGate.mMutex);
        return Policy::Read(ioGate.mGeneration);
    }

private:
    static constexpr int kEndless = -1;

    // Counts the calling thread as a waiter while it exists. The mutex must be held at construction and destruction.
    template <class Gate>
    class Waiter
    {
    public:
        explicit Waiter(Gate& ioGate) : mGate(ioGate) { ++Policy::Write(mGate.mWaiterCount); }
        ~Waiter() { --Policy::Write(mGate.mWaiterCount); }

        Waiter(const Waiter&) = delete;
        Waiter& operator=(const Waiter&) = delete;

    private:
        Gate& mGate;
    };

    // Reads with a full barrier: the compare-and-set changes nothing.
    template <class Gate>
    static bool IsOpen(Gate& ioGate)
    {
        return !Policy::CompareAndSet(ioGate.mIsOpen, false, false);
    }

    template <class Gate>
    static Result WaitAsleep(Gate& ioGate, int inMilliseconds, int inTurns)
    {
        typename Policy::MutexLock lock(ioGate.mMutex);
        if (Policy::Executes(Step::kGateSecondRead) && IsOpen(ioGate)) {
            return kSuccess;
        }
        const Waiter<Gate> waiter(ioGate);
        const std::uint32_t generation = Policy::Read(ioGate.mGeneration);
        if (PassesSoon(ioGate, lock, generation, inTurns)) {
            return kSuccess;
        }
        do {
            if (!SleepOnce(ioGate, lock, inMilliseconds)) {
                return kWaitTimeout;
            }
        } while (IsStillClosed(ioGate, generation));
        return kSuccess;
    }

    // Does not test the flag: a gate that is closed again immediately still releases its waiters.
    template <class Gate>
    static bool IsStillClosed(Gate& ioGate, std::uint32_t inGeneration)
    {
        return Policy::Executes(Step::kGateGenerationEndsSleep) ? Policy::Read(ioGate.mGeneration) == inGeneration
                                                                : !IsOpen(ioGate);
    }

    // Returns false on a timeout. The whole time limit applies to each sleep.
    template <class Gate>
    static bool SleepOnce(Gate& ioGate, typename Policy::MutexLock& ioLock, int inMilliseconds)
    {
        if (inMilliseconds == kEndless) {
            Policy::SleepOn(ioGate.mCondition, ioLock);
            return true;
        }
        return Policy::SleepOnFor(ioGate.mCondition, ioLock, inMilliseconds);
    }

    // Spins briefly, since a wake-up costs far more. While it spins, the thread is registered as a waiter. Opening the
    // gate therefore advances the gate's generation, and the thread notices it even if the gate is closed again before
    // the thread reads the flag.
    template <class Gate>
    static bool PassesSoon(Gate& ioGate, typename Policy::MutexLock& ioLock, std::uint32_t inGeneration, int inTurns)
    {
        if (inTurns == 0) {
            return false;
        }
        ioLock.unlock();
        for (int turn = 0; turn < inTurns && !IsOpen(ioGate); ++turn) {
            Policy::Pause(turn);
        }
        ioLock.lock();
        // Testing the flag is not enough: the opener sets it before it locks the mutex, and this thread must stay
        // registered as a waiter until then.
        return Policy::Read(ioGate.mGeneration) != inGeneration;
    }
};

} // namespace Sync
} // namespace ORL
