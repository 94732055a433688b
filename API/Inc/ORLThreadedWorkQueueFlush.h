// Floor: Threads
// Waiting until a work queue has finished everything that was queued before.
//
//   ORL::InterfaceRef<ORL::ThreadedWorkQueueFlush, ORL::ORLUnknown> flush(new ORL::ThreadedWorkQueueFlush);
//   flush->Init(queue);
//   queue->QueueRequest(request);
//   ...
//   flush->Flush(); // every request queued before has returned
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLWaitableGate.h>

#include <cstdint>

namespace ORL {

namespace Sync {
template <class Policy>
class WorkQueueFlushAlgorithm;
} // namespace Sync

/// Queues one copy of itself for each thread of the queue; each copy holds its thread until all have arrived. All threads
/// of the queue are held meanwhile, and what is queued after waits.
///
/// Owner:    a caller holds a counted reference for as long as it uses the object: the queued copies are references too,
///           and the last one to go deletes it.
/// Threads:  any number of threads may call Flush on one object; they are served one after the other. Two objects that
///           flush one queue at the same time may wait for each other for ever: use one object for each queue.
/// Time:     every wait is endless. The queue must not be paused.
/// Failure:  misuse is reported by assertions, and Flush then returns without having waited; it has no result.
class ORL_API ThreadedWorkQueueFlush
    : public UnknownImpl<IThreadedQueueRequest, ThreadedWorkQueueFlush, IThreadedQueueRequest>
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_ThreadedWorkQueueFlush;

    ThreadedWorkQueueFlush();
    ~ThreadedWorkQueueFlush() override;
    ThreadedWorkQueueFlush(const ThreadedWorkQueueFlush&) = delete;
    ThreadedWorkQueueFlush& operator=(const ThreadedWorkQueueFlush&) = delete;

    /// The queue to flush, in place of any earlier one. A null reference is reported by Flush. Not while Flush runs.
    void Init(InterfaceRef<ThreadedWorkQueue, ORLUnknown> inQueue);

    /// Returns when everything queued before has finished. Not to be called on a thread of the queue.
    void Flush();

    /// The rendezvous, run by the queue's threads alone.
    void Process() override;

private:
    template <class Policy>
    friend class Sync::WorkQueueFlushAlgorithm;

    unsigned int QueueItems(unsigned int inCount);
    void MakeUpForMissingItems(unsigned int inCount);

    InterfaceRef<ThreadedWorkQueue, ORLUnknown> mQueue;
    std::uint32_t mArrivalsLeft;   // items that have not arrived; -1 while no flush has claimed the object
    WaitableGate mArrivalGate;     // closed while items gather
    std::uint32_t mDeparturesLeft; // items that have not left Process
    WaitableGate mDepartureGate;   // opens when the last one has left
};

} // namespace ORL
