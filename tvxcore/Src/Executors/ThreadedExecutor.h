// The implementation of the public executor: a set of threads around an ExecutorCore.
#pragma once

#include <CorePlatform/Thread.h>
#include <Executors/CoreMutex.h>
#include <Executors/ExecutorCore.h>

#include <atomic>
#include <memory>
#include <vector>

namespace tvxcore {
namespace threads {

class ThreadedExecutor : public AsyncThreadedExecutor
{
public:
    /// Throws boost::thread_resource_error if the system cannot start a thread; threads already started have then
    /// exited.
    ThreadedExecutor(const std::shared_ptr<ExecutorCore>& inCore, unsigned int inThreadCount,
                     Platform::ThreadStarter inStarter = &Platform::StartThread_Impl);
    ~ThreadedExecutor() override;

    bool QueueFunction(const boost::function<void()>& inFunction, int) override;
    unsigned int GetThreadCount() override;
    void RequestTermination() override;
    bool IsTerminated() override;
    bool CurrentThreadIsExecutorThread() override;
    void WaitForTermination() override;
    void Pause() override;
    void Resume() override;
    void BlockWhilePaused() override;

private:
    void StartThread(Platform::ThreadStarter inStarter);
    void JoinThreads();

    const std::shared_ptr<ExecutorCore> mCore;
    const unsigned int mThreadCount;
    std::atomic<bool> mIsTerminated{false};
    CoreMutex mThreadsMutex;
    std::vector<Platform::ThreadHandle> mThreads TVXCORE_GUARDED_BY(mThreadsMutex); // threads not yet joined
};

} // namespace threads
} // namespace tvxcore
