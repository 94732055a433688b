#include <ORLThreadedWorkQueueFlush.h>

#include <ORLDebug.h>
#include <Sync/Policy.h>
#include <Threads/WorkQueueFlushAlgorithm.h>

#include <new>
#include <utility>

namespace ORL {

namespace {

using Rendezvous = Sync::WorkQueueFlushAlgorithm<Sync::SystemPolicy>;

} // namespace

#define ORL_FLUSH_ASSERT_FALSE(message)                                                                                \
  ORL_ASSERT_MESSAGE_AT(false, "false", message "\r\n", __FILE__, __LINE__, "ORL::ThreadedWorkQueueFlush::Flush")

ThreadedWorkQueueFlush::ThreadedWorkQueueFlush() : mArrivalsLeft(Rendezvous::kUnclaimed), mDeparturesLeft(0)
{
    mArrivalGate.Open();
    mDepartureGate.Open();
}

// The destructors of the gates open them, so no thread stays asleep at them.
ThreadedWorkQueueFlush::~ThreadedWorkQueueFlush() = default;

void ThreadedWorkQueueFlush::Init(InterfaceRef<ThreadedWorkQueue, ORLUnknown> inQueue)
{
    mQueue = std::move(inQueue);
}

void ThreadedWorkQueueFlush::Flush()
{
    if (!mQueue) {
        ORL_FLUSH_ASSERT_FALSE("Init was not called in ThreadedWorkQueueFlush, or the provided Queue was NULL");
        return;
    }
    if (mQueue->CurrentThreadIsQueueThread()) {
        ORL_FLUSH_ASSERT_FALSE("Attempted to flush a Queue from within the Queue.  This is not what you intended.");
        return;
    }
    const unsigned int threads = mQueue->GetNumberOfThreads();
    if (threads == 0) {
        ORL_FLUSH_ASSERT_FALSE("The Queue to flush has no threads.");
        return;
    }
    Rendezvous::Claim(*this, threads);
    const unsigned int queued = QueueItems(threads);
    if (queued != threads) {
        ORL_FLUSH_ASSERT_FALSE("Something went awry while queuing Flush items.");
        MakeUpForMissingItems(threads - queued);
    }
    Rendezvous::WaitForAll(*this);
}

void ThreadedWorkQueueFlush::Process()
{
    Rendezvous::Process(*this);
}

// Returns the number of items that the queue accepted.
unsigned int ThreadedWorkQueueFlush::QueueItems(unsigned int inCount)
{
    unsigned int queued = 0;
    for (unsigned int i = 0; i < inCount; ++i) {
        bool queuedSuccessfully = false;
        try {
            queuedSuccessfully = mQueue->QueueRequest(ThreadedWorkQueue::Request(this));
        } catch (const std::bad_alloc&) {
            // Running out of memory counts as a rejection by the queue: the items already queued must not wait for this
            // item.
        }
        ORL_ASSERT_IN(queuedSuccessfully, "ORL::ThreadedWorkQueueFlush::Flush");
        queued += queuedSuccessfully ? 1 : 0;
    }
    return queued;
}

void ThreadedWorkQueueFlush::MakeUpForMissingItems(unsigned int inCount)
{
    for (unsigned int i = 0; i < inCount; ++i) {
        Rendezvous::CountMissingItem(*this);
    }
}

} // namespace ORL
