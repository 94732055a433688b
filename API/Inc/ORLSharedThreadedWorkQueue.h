// Floor: Threads
// Work queues that all modules of a process share, with separate queues for each priority.
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>

namespace ORL {

/// One multi-threaded and one single-threaded queue for each priority, created on first request and stopped when the
/// library stops.
///
/// A multi-threaded queue has one thread for each processor that the process may use, but at least two. The threads
/// belong to all modules, so they carry the name of this library's module, not that of the module that requests the
/// queue: "ORL::Foundation: Multi-threaded ORL::SharedThreadedWorkQueue", or "Single-threaded ..." instead. On Linux
/// system tools show the first 15 bytes.
///
/// Owner:    the library owns the instance; queues are reference-counted.
/// Threads:  thread-safe. Holds a lock while it creates a queue and throughout Shutdown, which waits for the queues'
///           threads: a request must not use this class while Shutdown may run.
/// Failure:  the Retrieve functions return null for a missing queue. Exceptions from ThreadedWorkQueue::Initialize
///           propagate; the queue is then discarded.
class ORL_API SharedThreadedWorkQueue
{
public:
    using QueueRef = InterfaceRef<ThreadedWorkQueue, ORLUnknown>; ///< owns a queue

    SharedThreadedWorkQueue(const SharedThreadedWorkQueue&) = delete;
    SharedThreadedWorkQueue& operator=(const SharedThreadedWorkQueue&) = delete;

    /// Returns the process's instance; creates it if there is none. Lock-free. The library owns the instance until
    /// Shutdown.
    static SharedThreadedWorkQueue* Instance();

    /// Return the multi-threaded queue of a priority. If it does not exist yet, Retrieve returns null and
    /// RetrieveOrCreate creates it. Each number outside 0 to 5 has its own queue, which runs at priority 3.
    QueueRef Retrieve(ThreadPriorities::Type inPriority);
    QueueRef RetrieveOrCreate(ThreadPriorities::Type inPriority);

    /// Same as Retrieve and RetrieveOrCreate, for the single-threaded queue of a priority.
    QueueRef RetrieveSingleThreaded(ThreadPriorities::Type inPriority);
    QueueRef RetrieveOrCreateSingleThreaded(ThreadPriorities::Type inPriority);

    /// Stops every queue, the multi-threaded ones first, and destroys the instance; a later Instance creates a new one.
    /// References that clients hold stay valid and refer to stopped queues.
    static void Shutdown();

private:
    struct PrivateImpl;

    SharedThreadedWorkQueue();
    ~SharedThreadedWorkQueue();

    PrivateImpl* mImpl;
};

} // namespace ORL
