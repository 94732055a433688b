#include <Executors/ThreadedExecutor.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <boost/thread/exceptions.hpp>
#include <mutex>

namespace tvxcore {
namespace threads {

namespace {

using CorePointer = std::shared_ptr<ExecutorCore>;

void RunThread(void* inCore)
{
    const std::unique_ptr<CorePointer> core(static_cast<CorePointer*>(inCore));
    (*core)->RunThread();
}

// Chooses one thread for each processor, but at least two: a queue that was created as multi-threaded must not deadlock
// when one task waits for another.
unsigned int ChooseThreadCount(int inThreadCount)
{
    return inThreadCount > 0 ? static_cast<unsigned int>(inThreadCount)
                             : std::max(2u, Platform::UsableProcessorCount_Impl());
}

} // namespace

AsyncExecutor::~AsyncExecutor() = default;
AsyncThreadedExecutor::~AsyncThreadedExecutor() = default;

ThreadedExecutor::ThreadedExecutor(const std::shared_ptr<ExecutorCore>& inCore, unsigned int inThreadCount,
                                   Platform::ThreadStarter inStarter)
    : mCore(inCore), mThreadCount(inThreadCount)
{
    try {
        mThreads.reserve(inThreadCount);
        while (mThreads.size() < inThreadCount) {
            StartThread(inStarter);
        }
    } catch (...) {
        mCore->Channel().Close();
        JoinThreads();
        throw;
    }
}

ThreadedExecutor::~ThreadedExecutor()
{
    RequestTermination();
    if (mCore->OwnsCurrentThread()) {
        std::for_each(mThreads.begin(), mThreads.end(), &Platform::DetachThread_Impl);
    } else {
        JoinThreads();
    }
}

void ThreadedExecutor::StartThread(Platform::ThreadStarter inStarter)
{
    auto core = std::make_unique<CorePointer>(mCore);
    Platform::ThreadHandle thread{};
    if (!inStarter(&RunThread, core.get(), thread)) {
        throw boost::thread_resource_error();
    }
    static_cast<void>(core.release());
    const CoreMutexLock lock(mThreadsMutex);
    mThreads.push_back(thread);
}

// A second caller waits here until the first one has joined the threads.
void ThreadedExecutor::JoinThreads()
{
    const CoreMutexLock lock(mThreadsMutex);
    std::for_each(mThreads.begin(), mThreads.end(), &Platform::JoinThread_Impl);
    mThreads.clear();
}

bool ThreadedExecutor::QueueFunction(const boost::function<void()>& inFunction, int)
{
    return mCore->Queue(inFunction);
}

unsigned int ThreadedExecutor::GetThreadCount()
{
    return mThreadCount;
}

void ThreadedExecutor::RequestTermination()
{
    mCore->Channel().Close();
}

bool ThreadedExecutor::IsTerminated()
{
    return mIsTerminated;
}

bool ThreadedExecutor::CurrentThreadIsExecutorThread()
{
    return mCore->OwnsCurrentThread();
}

void ThreadedExecutor::WaitForTermination()
{
    if (!mCore->OwnsCurrentThread()) {
        JoinThreads();
    }
    mIsTerminated = mIsTerminated || mCore->Channel().IsClosed();
}

void ThreadedExecutor::Pause()
{
    mCore->Channel().Pause();
}

void ThreadedExecutor::Resume()
{
    mCore->Channel().Resume();
}

void ThreadedExecutor::BlockWhilePaused()
{
    mCore->Channel().BlockWhilePaused();
}

boost::shared_ptr<AsyncThreadedExecutor> CreateAsyncThreadedExecutor(const std::string& inName, int inThreadCount,
                                                                     ThreadPriority inPriority,
                                                                     const boost::function<void()>& inThreadStart,
                                                                     const boost::function<void()>& inThreadEnd)
{
    const auto core = std::make_shared<ExecutorCore>(inName, inPriority, inThreadStart, inThreadEnd);
    return boost::make_shared<ThreadedExecutor>(core, ChooseThreadCount(inThreadCount));
}

} // namespace threads
} // namespace tvxcore
