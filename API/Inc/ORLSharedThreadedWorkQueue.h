// Floor: Threads
// Work queues that the modules of a process share by priority.
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>

namespace ORL {

/// One multi-threaded and one single-threaded queue for each priority, made when they are first asked for and stopped when
/// the library stops.
///
/// Threads:  every operation may be called from any thread. A lock is held while a queue is made and over the whole of
///           Shutdown, which waits for the queues' threads: a request must not use this class while Shutdown can run.
/// Failure:  a missing queue is a null reference. Exceptions of ThreadedWorkQueue::Initialize pass through; the queue is
///           then not kept.
class ORL_API SharedThreadedWorkQueue
{
public:
    using QueueRef = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;

    SharedThreadedWorkQueue(const SharedThreadedWorkQueue&) = delete;
    SharedThreadedWorkQueue& operator=(const SharedThreadedWorkQueue&) = delete;

    /// The process's instance, made if there is none. Lock-free. It is the library's own and lives until Shutdown.
    static SharedThreadedWorkQueue* Instance();

    /// The multi-threaded queue of a priority; null when there is none yet. A number outside 0 to 5 is a key of its own,
    /// and its queue runs at priority 3.
    QueueRef Retrieve(ThreadPriorities::Type inPriority);
    QueueRef RetrieveOrCreate(ThreadPriorities::Type inPriority);

    /// The single-threaded queue of a priority.
    QueueRef RetrieveSingleThreaded(ThreadPriorities::Type inPriority);
    QueueRef RetrieveOrCreateSingleThreaded(ThreadPriorities::Type inPriority);

    /// Stops every queue, the multi-threaded ones first, and destroys the instance; a later Instance makes a new one. A
    /// reference that a client holds stays valid, to a stopped queue.
    static void Shutdown();

private:
    struct PrivateImpl;

    SharedThreadedWorkQueue();
    ~SharedThreadedWorkQueue();

    PrivateImpl* mImpl;
};

} // namespace ORL
