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

/// Runs functions on threads of its own. Every operation may be called from any thread, the executor's own included.
class TVXCORE_API AsyncExecutor
{
public:
    virtual ~AsyncExecutor();

    /// True: the function will run once, started in first-in, first-out order with the others. False: it was refused
    /// (termination has been requested) and will not run. The second argument has no meaning and is 0.
    /// The function is copied once, in the caller's thread, and goes when it has run. It should not throw; if it does,
    /// a warning goes to the error manager (package 110, identifier 1) and the thread goes on.
    /// Throws what the copy throws, or std::bad_alloc; the function will not run then.
    virtual bool QueueFunction(const boost::function<void()>& inFunction, int) = 0;

    /// Number of threads. It stays what it was when they have ended.
    virtual unsigned int GetThreadCount() = 0;

    /// Starts the end: a pause is over, nothing further is accepted, what is queued still runs, then the threads end.
    virtual void RequestTermination() = 0;

    /// False from creation until termination was requested and waited for, true after.
    virtual bool IsTerminated() = 0;

    /// True on one of the executor's own threads.
    virtual bool CurrentThreadIsExecutorThread() = 0;

    /// Returns once all threads have ended, which they do when termination has been requested. On a thread of the
    /// executor it returns at once.
    virtual void WaitForTermination() = 0;

    /// Holds back the start of further functions until Resume or termination. A function that a thread has already
    /// taken counts as started. Pauses are not counted: one Resume ends any number of them.
    virtual void Pause() = 0;
    virtual void Resume() = 0;

    /// Blocks the caller while the executor is paused.
    virtual void BlockWhilePaused() = 0;
};

/// An executor with a fixed number of threads. Dropping the last reference requests termination and waits for it; on
/// a thread of the executor itself it does not wait, and the threads end on their own. A module must not be unloaded
/// before its executors have been waited for.
class TVXCORE_API AsyncThreadedExecutor : public AsyncExecutor
{
public:
    ~AsyncThreadedExecutor() override;
};

/// Makes an executor of inThreadCount threads with that name and priority. Below 1 the executor chooses: one thread
/// for each processor that the process may use, and two at least.
/// The name (UTF-8) is shown by debuggers and system tools as far as the system keeps it. A priority above the
/// normal one is had only as far as the user may; one outside the range counts as the nearest inside.
/// inThreadStart and inThreadEnd run on each thread as it begins and ends; either may be empty.
/// Throws boost::thread_resource_error when the system refuses a thread, with nothing left behind.
TVXCORE_API boost::shared_ptr<AsyncThreadedExecutor> CreateAsyncThreadedExecutor(
    const std::string& inName, int inThreadCount, ThreadPriority inPriority,
    const boost::function<void()>& inThreadStart, const boost::function<void()>& inThreadEnd);

/// Runs a function on an executor again and again, inDelay milliseconds apart, until the object is destroyed or the
/// executor refuses it.
///
/// The first run comes inDelay after construction. Times do not drift while the executor keeps up; where a run comes
/// late or takes longer than inDelay, the next one comes inDelay after its end, and nothing is made up for.
/// The executor is kept alive as long as the object. The destructor returns only when the function is not running and
/// is gone, unless it is called by the function itself. So no lock that the function takes may be held meanwhile.
class TVXCORE_API RepeatDelayFunction
{
public:
    /// Throws boost::thread_resource_error when the system refuses the thread that waits for the times, and
    /// std::bad_alloc.
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
