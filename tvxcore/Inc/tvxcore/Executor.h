// Threads that run functions: the executors under every work queue.
#pragma once

#include <tvxcore/Config.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>

namespace tvxcore {
namespace threads {

/// From 0, the lowest, to 5, the highest; 3 is the system's normal priority.
using ThreadPriority = int;

/// Identifier of the calling thread, as the system's tools show it.
TVXCORE_API unsigned long GetCurrentThreadID();

/// Runs functions on threads of its own. Every operation may be called from any thread.
class TVXCORE_API AsyncExecutor
{
public:
    virtual ~AsyncExecutor();

    /// True: the function will run once, started in first-in, first-out order with the others. False: it was refused
    /// (termination has been requested) and will not run.
    virtual bool QueueFunction(const boost::function<void()>& inFunction, int) = 0;

    /// Number of threads.
    virtual unsigned int GetThreadCount() = 0;

    /// Starts the end: nothing further is accepted, what is queued still runs, then the threads end.
    virtual void RequestTermination() = 0;

    /// False from creation until termination was requested and waited for, true after.
    virtual bool IsTerminated() = 0;

    /// True on one of the executor's own threads.
    virtual bool CurrentThreadIsExecutorThread() = 0;

    /// Returns once all threads have ended. On a thread of the executor it returns at once.
    virtual void WaitForTermination() = 0;

    /// Holds back the start of further functions until Resume.
    virtual void Pause() = 0;
    virtual void Resume() = 0;

    /// Blocks the caller while the executor is paused.
    virtual void BlockWhilePaused() = 0;
};

/// An executor with a fixed number of threads. Dropping the last reference requests termination and waits for it,
/// except on a thread of the executor itself, which then ends on its own.
class TVXCORE_API AsyncThreadedExecutor : public AsyncExecutor
{
public:
    ~AsyncThreadedExecutor() override;
};

/// Makes an executor of inThreadCount threads (-1: one for each processor) with that name and priority.
/// inThreadStart and inThreadEnd run on each thread as it begins and ends; either may be empty.
/// Throws boost::thread_resource_error when the system refuses a thread, with nothing left behind.
TVXCORE_API boost::shared_ptr<AsyncThreadedExecutor> CreateAsyncThreadedExecutor(
    const std::string& inName, int inThreadCount, ThreadPriority inPriority,
    const boost::function<void()>& inThreadStart, const boost::function<void()>& inThreadEnd);

/// Runs a function on an executor again and again, inDelay milliseconds apart, until the object is destroyed.
/// The destructor returns only when the function is not running, unless the function itself destroys the object.
class TVXCORE_API RepeatDelayFunction
{
public:
    RepeatDelayFunction(const boost::shared_ptr<AsyncExecutor>& inExecutor, const boost::function<void()>& inFunction,
                        unsigned int inDelay);
    ~RepeatDelayFunction();

    RepeatDelayFunction(const RepeatDelayFunction&) = delete;
    RepeatDelayFunction& operator=(const RepeatDelayFunction&) = delete;

private:
    struct State;
    std::shared_ptr<State> mState;
};

} // namespace threads
} // namespace tvxcore
