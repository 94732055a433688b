// The state that the threads of an executor share, and the loop that each of them runs.
#pragma once

#include <Executors/WorkChannel.h>
#include <Executors/WorkChannelPolicy.h>
#include <tvxcore/Executor.h>

#include <boost/function.hpp>
#include <string>

namespace tvxcore {
namespace threads {

/// Owned by the executor and by each of its threads, so a thread may outlive the executor.
class ExecutorCore
{
public:
    /// A thread inherits the processor affinity of its creator, so the core must be constructed on the thread that
    /// starts the threads.
    ExecutorCore(const std::string& inName, ThreadPriority inPriority, const boost::function<void()>& inThreadStart,
                 const boost::function<void()>& inThreadEnd);

    /// Returns false after Channel().Close(). Throws what copying the function throws, or std::bad_alloc, and then
    /// queues nothing.
    bool Queue(const boost::function<void()>& inFunction);

    /// The main function of a thread: runs until the channel is closed and empty.
    void RunThread() noexcept;

    /// Returns whether the calling thread is in RunThread of this core.
    bool OwnsCurrentThread() const noexcept;

    WorkChannel<SystemPolicy>& Channel() { return mChannel; }

private:
    void RunGuarded(const boost::function<void()>& inFunction) const noexcept;
    void ReportThrow(const char* inWhat) const noexcept;

    WorkChannel<SystemPolicy> mChannel;
    const std::string mName;
    const ThreadPriority mPriority;
    const boost::function<void()> mThreadStart;
    const boost::function<void()> mThreadEnd;
};

} // namespace threads
} // namespace tvxcore
