#include "LinuxCompletionPort.h"

#include "SystemCalls.h"

#include <Platform/Waiting.h>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <vector>

namespace ORL {
namespace Linux {

using namespace AsyncFiles::Platform;

namespace {

// A disk is kept busy by a few reads at once; more threads only cost.
constexpr std::size_t kThreads = 8;

struct Finished
{
    ReadOrder mOrder; // without a file: an empty packet
    std::int64_t mReturned;
};

/// Threads are started as reads come and find none idle. They end with the port.
class ThreadPort : public CompletionPort
{
public:
    explicit ThreadPort(const char* inDescription) : mDescription(inDescription) { mThreads.reserve(kThreads); }
    ThreadPort(const ThreadPort&) = delete;
    ThreadPort& operator=(const ThreadPort&) = delete;

    ~ThreadPort() override
    {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mIsEnding = true;
            mOrders.clear();
        }
        mOrderCame.notify_all();
        for (const Handle thread : mThreads) {
            WaitForThread_Impl(thread);
            CloseThread_Impl(thread);
        }
    }

    SystemError Start(const ReadOrder& inOrder) override
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        try {
            mOrders.push_back(inOrder);
        } catch (const std::bad_alloc&) {
            return SystemErrors::kErrorNotEnoughMemory;
        }
        const SystemError refusal = mOrders.size() > mIdle ? AddThread() : SystemErrors::kNoError;
        if (refusal != SystemErrors::kNoError && mThreads.empty()) {
            mOrders.pop_back(); // nobody would ever read it
            return refusal;
        }
        mOrderCame.notify_one();
        return SystemErrors::kErrorIoPending;
    }

    bool PostEmptyPacket() override { return Report(Finished{ReadOrder{}, 0}); }

    bool Get(Completion& outCompletion) override
    {
        outCompletion = Completion{};
        std::unique_lock<std::mutex> lock(mMutex);
        mReadEnded.wait(lock, [this] { return !mFinished.empty(); });
        const Finished finished = mFinished.front();
        mFinished.pop_front();
        lock.unlock();
        return finished.mOrder.mFile == nullptr || CompleteRead(finished.mOrder, finished.mReturned, outCompletion);
    }

    const char* Describe() const override { return mDescription; }

private:
    // The lock is held.
    SystemError AddThread()
    {
        if (mThreads.size() == kThreads) {
            return SystemErrors::kNoError;
        }
        Handle thread = nullptr;
        const SystemError refusal = StartThread_Impl("ORL Async Read", &Serve, this, thread);
        if (refusal == SystemErrors::kNoError) {
            mThreads.push_back(thread);
        }
        return refusal;
    }

    static void Serve(void* inPort) { static_cast<ThreadPort*>(inPort)->ServeOrders(); }

    void ServeOrders()
    {
        ReadOrder order;
        while (TakeOrder(order)) {
            const Finished finished{order, ReadNow(order)};
            while (!Report(finished)) {
                Sync::Platform::SleepMilliseconds_Impl(1); // without memory to remember it by, the read must not be lost
            }
        }
    }

    bool TakeOrder(ReadOrder& outOrder)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        ++mIdle;
        mOrderCame.wait(lock, [this] { return mIsEnding || !mOrders.empty(); });
        --mIdle;
        if (mIsEnding) {
            return false;
        }
        outOrder = mOrders.front();
        mOrders.pop_front();
        return true;
    }

    static std::int64_t ReadNow(const ReadOrder& inOrder)
    {
        for (;;) {
            const ssize_t returned = System().mPRead(inOrder.mFile->mDescriptor, inOrder.mBuffer, inOrder.mSize,
                                                     static_cast<off_t>(inOrder.mPosition));
            if (returned >= 0) {
                return returned;
            }
            if (errno != EINTR) {
                return -static_cast<std::int64_t>(errno);
            }
        }
    }

    bool Report(const Finished& inFinished)
    {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            try {
                mFinished.push_back(inFinished);
            } catch (const std::bad_alloc&) {
                return false;
            }
        }
        mReadEnded.notify_one();
        return true;
    }

    const char* const mDescription;
    std::mutex mMutex; // guards all below but the threads' ends
    std::condition_variable mOrderCame;
    std::condition_variable mReadEnded;
    std::deque<ReadOrder> mOrders;
    std::deque<Finished> mFinished;
    std::vector<Handle> mThreads;
    std::size_t mIdle = 0;
    bool mIsEnding = false;
};

const char* DescriptionFor(int inRefusal)
{
    switch (inRefusal) {
    case EPERM:
        return "pread threads, since the kernel forbids io_uring (EPERM)";
    case ENOSYS:
        return "pread threads, since the kernel has no io_uring (ENOSYS)";
    case ENOMEM:
        return "pread threads, since the kernel has no memory for io_uring (ENOMEM)";
    default:
        return "pread threads, since the kernel refuses io_uring";
    }
}

} // namespace

std::shared_ptr<CompletionPort> MakeThreadPort(int inRefusal)
{
    return std::make_shared<ThreadPort>(DescriptionFor(inRefusal));
}

} // namespace Linux
} // namespace ORL
