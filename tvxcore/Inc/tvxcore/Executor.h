// Thread pools that run functions: the executors that work queues use.
#pragma once

#include <tvxcore/Config.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>

namespace tvxcore {
namespace threads {

/// A thread priority from 0, the lowest, to 5, the highest; 3 is the system's normal priority.
using ThreadPriority = int;

/// Returns the identifier of the calling thread, as system tools show it.
TVXCORE_API unsigned long GetCurrentThreadID();

/// Runs functions on its own threads.
///
/// Owner:    shared pointers; the last one destroys the executor.
/// Threads:  thread-safe; every operation may also be called on the executor's own threads.
/// Failure:  only QueueFunction throws.
class TVXCORE_API AsyncExecutor
{
public:
    virtual ~AsyncExecutor();

    /// Queues a function. Functions start in first-in, first-out order, and each runs once. Returns false, and queues
    /// nothing, if termination has been requested. Ignores the second argument; pass 0. The function is copied once,
    /// on the caller's thread; the copy is destroyed after it has run. The function should not throw: an exception is
    /// reported to the error manager as a warning (package 110, identifier 1) and the thread continues. Throws what
    /// copying throws, or std::bad_alloc; the function then does not run.
    virtual bool QueueFunction(const boost::function<void()>& inFunction, int) = 0;

    /// Returns the number of threads that were started, even after they have exited.
    virtual unsigned int GetThreadCount() = 0;

    /// Requests termination: ends a pause and refuses further functions. Queued functions still run, then the threads
    /// exit.
    virtual void RequestTermination() = 0;

    /// Returns whether termination has been requested and WaitForTermination has returned.
    virtual bool IsTerminated() = 0;

    /// Returns whether the calling thread is one of the executor's threads.
    virtual bool CurrentThreadIsExecutorThread() = 0;

    /// Blocks until all threads have exited, which requires RequestTermination. On a thread of the executor, returns
    /// immediately.
    virtual void WaitForTermination() = 0;

    /// Delays the start of further functions until Resume or termination. A function that a thread has already dequeued
    /// counts as started. Pauses are not counted: one Resume ends any number of them.
    virtual void Pause() = 0;
    virtual void Resume() = 0;

    /// Blocks the caller while the executor is paused.
    virtual void BlockWhilePaused() = 0;
};

/// An executor with a fixed number of threads. Owner, threads and failures are as for AsyncExecutor. Releasing the last
/// reference requests termination and waits for the threads to exit; on one of the executor's own threads it does not
/// wait. A module must not be unloaded before its executors have terminated.
class TVXCORE_API AsyncThreadedExecutor : public AsyncExecutor
{
public:
    ~AsyncThreadedExecutor() override;
};

/// Creates an executor of inThreadCount threads with a name and a priority. If inThreadCount is below 1, it creates one
/// thread for each processor that the process may use, but at least two. Debuggers and system tools show the name
/// (UTF-8), truncated to the system's limit. The user's rights may limit a priority above normal; a priority outside
/// the range is clamped. inThreadStart and inThreadEnd run on each thread as it starts and exits; either may be
/// empty. Throws boost::thread_resource_error if the system cannot start a thread; everything is then undone.
/// Thread-safe.
TVXCORE_API boost::shared_ptr<AsyncThreadedExecutor>
CreateAsyncThreadedExecutor(const std::string& inName, int inThreadCount, ThreadPriority inPriority,
                            const boost::function<void()>& inThreadStart, const boost::function<void()>& inThreadEnd);

/// Runs a function on an executor repeatedly, inDelay milliseconds apart, until the object is destroyed or the executor
/// refuses the function.
///
/// The first run starts inDelay after construction. Times do not drift while the executor keeps up. If a run is late or
/// takes longer than inDelay, the next one starts inDelay after its end; missed runs are dropped.
/// Owner:    keeps a reference to the executor. Unless the function destroys the object, the destructor returns after
///           the function has finished and has been destroyed. So its caller must not hold a lock that the function
///           acquires.
/// Threads:  any thread may destroy the object, its own function included.
/// Failure:  only the constructor throws.
class TVXCORE_API RepeatDelayFunction
{
public:
    /// Throws std::bad_alloc, and boost::thread_resource_error if the system cannot start the timer thread.
    RepeatDelayFunction(const boost::shared_ptr<AsyncExecutor>& inExecutor, const boost::function<void()>& inFunction,
                        unsigned int inDelay);
    ~RepeatDelayFunction();

    RepeatDelayFunction(const RepeatDelayFunction&) = delete;
    RepeatDelayFunction& operator=(const RepeatDelayFunction&) = delete;

private:
    struct State;

    boost::shared_ptr<AsyncExecutor> mExecutor;
    std::shared_ptr<State> mState;
};

} // namespace threads
} // namespace tvxcore
