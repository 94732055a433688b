// Floor: Threads
// The rendezvous by which a flush learns that every thread of a queue has finished what came before.
#pragma once

#include <Sync/Policy.h>
#include <WaitableGateAlgorithm.h>

#include <cstdint>

namespace ORL {
namespace Sync {

/// Works on any record that has the rendezvous fields of ThreadedWorkQueueFlush, in the types of the policy.
///
/// A queue's thread takes a function only after finishing the one before, and functions start in the order in which they
/// were queued. So when as many items as there are threads are all in Process, each thread has taken one, and whatever was
/// queued before them has returned. The items wait for each other at the arrival gate; the flush waits until all have left.
template <class Policy>
class WorkQueueFlushAlgorithm
{
public:
    /// What mArrivalsLeft holds while no flush has claimed the record: -1.
    static constexpr std::uint32_t kUnclaimed = 0xFFFFFFFFu;

    /// Waits its turn and takes the record for a flush of inThreads items, with both gates closed at the end.
    template <class Flush>
    static void Claim(Flush& ioFlush, std::uint32_t inThreads)
    {
        for (int turn = 0; !Policy::CompareAndSet(ioFlush.mArrivalsLeft, kUnclaimed, inThreads); ++turn) {
            GateAlgorithm::WaitPatiently(ioFlush.mArrivalGate);
            // The gate is open from the claim of another flush until that one closes it. Many who try again at once would keep
            // the processors from that flush and from the items that it waits for.
            if (Policy::Keeps(Step::kFlushGivesWay)) {
                Policy::GiveWay(turn);
            }
        }
        // The count says unclaimed before the earlier flush is over: its items may still be leaving.
        if (Policy::Keeps(Step::kFlushWaitsForTheEarlierOne)) {
            WaitForAll(ioFlush);
        }
        ioFlush.mArrivalGate.Close();
        Policy::Exchange(ioFlush.mDeparturesLeft, inThreads);
        ioFlush.mDepartureGate.Close();
    }

    /// What each item does on its thread.
    template <class Flush>
    static void Process(Flush& ioFlush)
    {
        if (!Arrive(ioFlush)) {
            GateAlgorithm::WaitPatiently(ioFlush.mArrivalGate);
        }
        Depart(ioFlush);
    }

    /// Stands in for an item that could not be queued, so that the others need not wait for it.
    template <class Flush>
    static void MakeUpForMissingItem(Flush& ioFlush)
    {
        Arrive(ioFlush);
        Depart(ioFlush);
    }

    /// Returns when all items have arrived and left.
    template <class Flush>
    static void WaitForAll(Flush& ioFlush)
    {
        GateAlgorithm::WaitPatiently(ioFlush.mArrivalGate);
        GateAlgorithm::WaitPatiently(ioFlush.mDepartureGate);
    }

private:
    // A flush of an idle queue takes microseconds where nobody sleeps, and each sleep costs thirty and more: the caller's as
    // well as that of a thread of the queue, which looks on for its next function only so long.
    using GateAlgorithm = WaitableGateAlgorithm<Policy>;

    // True for the last one. The record is unclaimed before the gate opens, so that a waiting flush can claim it as soon as
    // it comes through.
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
