// Floor: Threads
// A work queue with its own background threads.
//
//   class Scan : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
//   {
//       void Process() override {}
//   };
//
//   ORL::InterfaceRef<ORL::ThreadedWorkQueue, ORL::ORLUnknown> queue(new ORL::ThreadedWorkQueue);
//   queue->Initialize(ORL::ThreadPriorities::kNormal, 2, ORL::ConstString("Scan"), ORL::ConstString("Editor"));
//   queue->QueueRequest(ORL::ThreadedWorkQueue::Request(new Scan));
//   ...
//   queue->Stop();
#pragma once

#include <ORLConfig.h>
#include <ORLConstString.h>
#include <ORLInterface.h>

namespace ORL {

/// The priority of a queue's threads, from 0, the lowest, to 5, the highest. Any other number is treated as 3, the
/// process's own priority. On Linux, for a user without the right to raise priorities, 4 and 5 act as 3, and queues
/// created on a thread of lower priority keep that priority.
struct ThreadPriorities
{
    using Type = int; ///< a number from 0 to 5

    static constexpr Type kLowest = 0;  ///< for work that can wait
    static constexpr Type kNormal = 3;  ///< the process's own priority
    static constexpr Type kHighest = 5; ///< for work that cannot wait
};

/// A unit of work. Clients and the queue hold counted references to it. See Process for threads and failures.
class ORL_API IThreadedQueueRequest : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_IThreadedQueueRequest;

    /// Does the work, on a thread of the queue. An exception is reported to the error manager as a warning; the thread
    /// continues with the next request.
    virtual void Process() = 0;
};

/// Starts requests on its own threads in the order in which they were queued, and runs one periodic idle process.
///
/// State:    created (no threads) until Initialize; running until Stop; then stopped permanently: requests are refused.
///           Destroying a running queue, or stopping a queue twice, reports an assertion and then acts like Stop.
/// Owner:    counted references. Clients hold it through InterfaceRef<ThreadedWorkQueue, ORLUnknown>.
/// Threads:  thread-safe, the queue's own threads included, with two exceptions: Initialize must finish before a second
///           thread uses the queue, and Stop must not run at the same time as Initialize.
/// Failure:  misuse is reported by assertions and contract checks; no function returns an error code. QueueRequest and
///           SetIdleProcess may throw std::bad_alloc; in that case nothing has changed.
class ORL_API ThreadedWorkQueue : public UnknownImpl<ORLUnknown, ThreadedWorkQueue>
{
public:
    using Request = InterfaceRef<IThreadedQueueRequest, IThreadedQueueRequest>; ///< owns a request

    static constexpr Guid kInterfaceID = kInterfaceID_ThreadedWorkQueue;

    ThreadedWorkQueue();
    ~ThreadedWorkQueue() override;
    ThreadedWorkQueue(const ThreadedWorkQueue&) = delete;
    ThreadedWorkQueue& operator=(const ThreadedWorkQueue&) = delete;

    /// Starts the threads, which are named "module: thread". Neither name may be empty. Policy -1 starts one thread for
    /// each processor that the process may use, but at least two; 0 starts one; a number above 0 starts that many. Any
    /// other policy asserts and starts one. A second call replaces the threads: the old threads run their queued
    /// requests, then exit. Returns true. Throws boost::thread_resource_error if the system cannot start a thread.
    bool Initialize(ThreadPriorities::Type inPriority, int inThreadAllocationPolicy, ConstString inThreadName,
                    ConstString inModuleName);

    /// Queues a request. The threads hold a reference to it until Process has returned. Returns true if the request
    /// will run once, false if the queue has no threads or has been stopped.
    bool QueueRequest(Request inRequest);

    /// Replaces the idle process: queues a request every inInterval milliseconds; each run waits its turn like any
    /// other request. Returns false and changes nothing for a null request, an interval below 1, or a queue without
    /// threads. If the previous idle process is running, waits for it. That process must therefore not wait for the
    /// caller, nor acquire a lock that the caller holds.
    bool SetIdleProcess(Request inRequest, int inInterval);

    /// Stops the idle process, if any. Waits while the idle process is running, except on the thread that runs it.
    void ClearIdleProcess();

    /// Delays the start of further requests until Resume or Stop. One Resume undoes any number of Pause calls.
    void Pause();
    void Resume();

    /// Blocks the caller while the queue is paused.
    void BlockWhilePaused();

    bool CurrentThreadIsQueueThread(); ///< returns whether the caller is a thread of this queue

    /// Returns the number of threads, which is 0 before Initialize.
    unsigned int GetNumberOfThreads();

    /// Refuses further requests, runs the queued ones, and returns when the threads have exited. On a thread of the
    /// queue, returns immediately.
    void Stop();

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
};

} // namespace ORL
