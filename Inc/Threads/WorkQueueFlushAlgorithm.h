// The rendezvous by which a flush detects that every thread of a queue has finished all earlier requests.
#pragma once

#include <Sync/Policy.h>
#include <Threads/WaitableGateAlgorithm.h>

#include <cstdint>

namespace ORL {
namespace Sync {

/// Works on any type that has the rendezvous fields of ThreadedWorkQueueFlush, with the types that the policy defines.
///
/// A flush queues one item for each thread of the queue; the item calls Process. A thread takes an item only after it
/// has finished the previous one, and items start in the order in which they were queued. So when one item for each
/// thread is in Process, everything queued earlier has returned. The items wait for each other at the arrival gate; the
/// flush waits until all have left.
template <class Policy>
class WorkQueueFlushAlgorithm
{
public:
    /// The value of mArrivalsLeft, -1, while no flush has claimed the object.
    static constexpr std::uint32_t kUnclaimed = 0xFFFFFFFFu;

    /// Waits until the object is free and claims it for a flush of inThreads items. Closes both gates.
    template <class Flush>
    static void Claim(Flush& ioFlush, std::uint32_t inThreads)
    {
        for (int turn = 0; !Policy::CompareAndSet(ioFlush.mArrivalsLeft, kUnclaimed, inThreads); ++turn) {
            GateAlgorithm::WaitWithLongSpin(ioFlush.mArrivalGate);
            // The gate is open, and Wait returns at once, until the flush that has claimed the object closes the gate.
            // Threads that retry without a pause would starve that flush and its items of processor time.
            if (Policy::Executes(Step::kFlushYields)) {
                Policy::YieldOrSleep(turn);
            }
        }
        // The object becomes claimable before the previous flush is over: its items may still be leaving.
        if (Policy::Executes(Step::kFlushWaitsForPrevious)) {
            WaitForAll(ioFlush);
        }
        ioFlush.mArrivalGate.Close();
        Policy::Exchange(ioFlush.mDeparturesLeft, inThreads);
        ioFlush.mDepartureGate.Close();
    }

    /// Called by each item, on its thread.
    template <class Flush>
    static void Process(Flush& ioFlush)
    {
        if (!Arrive(ioFlush)) {
            GateAlgorithm::WaitWithLongSpin(ioFlush.mArrivalGate);
        }
        Depart(ioFlush);
    }

    /// Replaces an item that could not be queued, so that the other items do not wait for it.
    template <class Flush>
    static void CountMissingItem(Flush& ioFlush)
    {
        Arrive(ioFlush);
        Depart(ioFlush);
    }

    /// Returns when all items have arrived and left.
    template <class Flush>
    static void WaitForAll(Flush& ioFlush)
    {
        GateAlgorithm::WaitWithLongSpin(ioFlush.mArrivalGate);
        GateAlgorithm::WaitWithLongSpin(ioFlush.mDepartureGate);
    }

private:
    // Uses the long spins: flushing an idle queue takes a few microseconds if no thread sleeps, and each sleep, in
    // the caller or in a thread of the queue, adds thirty microseconds or more.
    using GateAlgorithm = WaitableGateAlgorithm<Policy>;

    // Returns true for the last arrival. This thread makes the object claimable before it opens the gate, so that a
    // waiting flush can claim the object as soon as the gate is open.
    template <class Flush>
    static bool Arrive(Flush& ioFlush)
    {
        if (Policy::Decrement(ioFlush.mArrivalsLeft) != 0) {
            return false;
        }
        Policy::Exchange(ioFlush.mArrivalsLeft, kUnclaimed);
        ioFlush.mArrivalGate.Open();
        return true;
    }

    template <class Flush>
    static void Depart(Flush& ioFlush)
    {
        if (Policy::Decrement(ioFlush.mDeparturesLeft) == 0) {
            ioFlush.mDepartureGate.Open();
        }
    }
};

} // namespace Sync
} // namespace ORL
