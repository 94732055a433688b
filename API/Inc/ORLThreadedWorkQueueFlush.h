// Floor: Threads
// Waits until a work queue has finished all requests that were queued earlier.
//
//   ORL::InterfaceRef<ORL::ThreadedWorkQueueFlush, ORL::ORLUnknown> flush(new ORL::ThreadedWorkQueueFlush);
//   flush->Init(queue);
//   queue->QueueRequest(request);
//   ...
//   flush->Flush(); // every request queued earlier has returned
//
// In one line, if no other thread flushes the queue:
//
//   ORL::ThreadedWorkQueueFlush::FlushQueue(queue);
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

/// Queues one item for each thread of the queue; each item blocks its thread until all have arrived. Until then the
/// queue starts no request that was queued after the items.
///
/// Owner:    counted references. A caller must hold one while it uses the object: the queued items are references too,
///           and the last release deletes the object.
/// Threads:  any number of threads may call Flush on one object; they are served one after the other. Two objects that
///           flush one queue at the same time may deadlock: use one object for each queue.
/// Time:     no wait has a time limit. The queue must not be paused.
/// Failure:  misuse is reported by assertions, and Flush then returns without waiting; it has no result.
class ORL_API ThreadedWorkQueueFlush
    : public UnknownImpl<IThreadedQueueRequest, ThreadedWorkQueueFlush, IThreadedQueueRequest>
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_ThreadedWorkQueueFlush;

    ThreadedWorkQueueFlush();
    ~ThreadedWorkQueueFlush() override;
    ThreadedWorkQueueFlush(const ThreadedWorkQueueFlush&) = delete;
    ThreadedWorkQueueFlush& operator=(const ThreadedWorkQueueFlush&) = delete;

    /// Sets the queue to flush. If it is null, Flush reports an assertion. Must not be called while Flush runs.
    void Init(InterfaceRef<ThreadedWorkQueue, ORLUnknown> inQueue);

    /// Blocks until all requests queued earlier have finished. Must not be called on a thread of the queue.
    void Flush();

    /// Flushes a queue with a temporary object. No other object may flush the queue at the same time. Throws
    /// std::bad_alloc.
    static void FlushQueue(const InterfaceRef<ThreadedWorkQueue, ORLUnknown>& inQueue)
    {
        const InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown> flush(new ThreadedWorkQueueFlush);
        flush->Init(inQueue);
        flush->Flush();
    }

    /// Blocks until all items have arrived. Only the queue's threads call this function.
    void Process() override;

private:
    template <class Policy>
    friend class Sync::WorkQueueFlushAlgorithm;

    unsigned int QueueItems(unsigned int inCount);
    void MakeUpForMissingItems(unsigned int inCount);

    InterfaceRef<ThreadedWorkQueue, ORLUnknown> mQueue;
    std::uint32_t mArrivalsLeft;   // items that have not arrived; -1 if no flush has claimed the object
    WaitableGate mArrivalGate;     // opens when all items have arrived
    std::uint32_t mDeparturesLeft; // items that have not left Process
    WaitableGate mDepartureGate;   // opens when the last item has left
};

} // namespace ORL
