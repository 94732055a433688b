// Floor: Threads
// Work that runs on threads in the background.
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

/// How urgent a queue's threads are, from 0 to 5. Each number is the thread priority of the same number; every number
/// outside counts as 3, the process's own. On Linux a user who may not raise a thread above the process gets 3 for 4 and 5, and
/// the threads of a queue that is made on a thread of lower priority stay at that one's.
struct ThreadPriorities
{
    using Type = int;

    static constexpr Type kLowest = 0;
    static constexpr Type kNormal = 3;
    static constexpr Type kHighest = 5;
};

/// A piece of work.
class ORL_API IThreadedQueueRequest : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_IThreadedQueueRequest;

    /// Does the work, on a thread of the queue. An exception that leaves it is reported as a warning to the error
    /// manager; the thread goes on with the next request.
    virtual void Process() = 0;
};

/// Runs requests on threads of its own, started in the order in which they were queued, and one idle process beside
/// them. Clients hold it by InterfaceRef<ThreadedWorkQueue, ORLUnknown>.
///
/// Created: without threads until Initialize. Running: until Stop. Stopped: for good; requests are refused.
/// A queue that is destroyed while it runs reports an assertion, and then ends as if it had been stopped; so does a
/// queue that is stopped twice.
///
/// Threads:  Initialize must be finished before a second thread uses the queue, and Stop must not run beside it. All
///           else may be called from any thread, the queue's own included.
/// Failure:  misuse is reported by assertions and contract checks; there are no results beyond true and false.
///           std::bad_alloc may leave QueueRequest and SetIdleProcess, and then nothing has changed.
class ORL_API ThreadedWorkQueue : public UnknownImpl<ORLUnknown, ThreadedWorkQueue>
{
public:
    using Request = InterfaceRef<IThreadedQueueRequest, IThreadedQueueRequest>;

    static constexpr Guid kInterfaceID = kInterfaceID_ThreadedWorkQueue;

    ThreadedWorkQueue();
    ~ThreadedWorkQueue() override;
    ThreadedWorkQueue(const ThreadedWorkQueue&) = delete;
    ThreadedWorkQueue& operator=(const ThreadedWorkQueue&) = delete;

    /// Starts the threads, which are named "module: thread". Both names must be given.
    /// Policy: -1 for as many threads as suit the machine, two at least; 0 for one thread; above 0 for that many. Any
    /// other policy is reported and gives one thread.
    /// A second call replaces the threads: the old ones run what was queued to them, then end.
    /// True when done. Throws boost::thread_resource_error when the system refuses a thread.
    bool Initialize(ThreadPriorities::Type inPriority, int inThreadAllocationPolicy, ConstString inThreadName,
                    ConstString inModuleName);

    /// Hands a request to the threads, which keep a count of it until Process has returned. True: it will run once.
    /// False: the queue has no threads, or has been stopped.
    bool QueueRequest(Request inRequest);

    /// Runs a request again and again, inInterval milliseconds apart, in its turn among the others, in place of the
    /// idle process before. False, and nothing changes, for a null request, an interval below 1, or a queue without
    /// threads.
    /// The idle process before is ended inside: when it is running, this waits for it. So neither it nor a lock that it
    /// takes may wait for the caller.
    bool SetIdleProcess(Request inRequest, int inInterval);

    /// Ends the idle process, if there is one, and waits while it is running; on the thread that runs it, it does not
    /// wait.
    void ClearIdleProcess();

    /// Holds back the start of further requests, until Resume or Stop. One Resume ends any number of pauses.
    void Pause();
    void Resume();

    /// Blocks the caller while the queue is paused.
    void BlockWhilePaused();

    bool CurrentThreadIsQueueThread();

    /// 0 before Initialize.
    unsigned int GetNumberOfThreads();

    /// Refuses further requests, runs those that are queued, and returns when the threads have ended. On a thread of
    /// the queue it returns at once.
    void Stop();

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
};

} // namespace ORL
