#include "LinuxCompletionPort.h"

#include <Platform/Mutex.h>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <vector>

namespace ORL {
namespace Linux {

using namespace AsyncFiles::Platform;

namespace {

// A few concurrent reads keep a disk busy; more threads only add cost.
constexpr std::size_t kThreads = 8;

// Space for every read that can be in flight, and an empty packet.
constexpr std::size_t kPlaces = 4096;

struct CompletedRead
{
    ReadRequest mRequest; // an entry without a file is an empty packet
    std::int64_t mReturned;
};

/// A queue that never allocates, because a read in progress must not be lost when memory runs out.
template <class T>
class FixedQueue
{
public:
    bool IsEmpty() const { return mCount == 0; }
    std::size_t Count() const { return mCount; }

    bool Push(const T& inItem)
    {
        if (mCount == kPlaces) {
            return false;
        }
        mItems[(mFirst + mCount) % kPlaces] = inItem;
        ++mCount;
        return true;
    }

    T Pop()
    {
        const T item = mItems[mFirst];
        mFirst = (mFirst + 1) % kPlaces;
        --mCount;
        return item;
    }

    void PopNewest() { --mCount; }
    void Clear() { mCount = 0; }

private:
    std::array<T, kPlaces> mItems{};
    std::size_t mFirst = 0;
    std::size_t mCount = 0;
};

/// Starts a thread if a read is queued and no thread is idle. The port joins its threads.
class ThreadPort : public CompletionPort
{
public:
    explicit ThreadPort(const char* inDescription) : mDescription(inDescription) { mThreads.reserve(kThreads); }
    ThreadPort(const ThreadPort&) = delete;
    ThreadPort& operator=(const ThreadPort&) = delete;

    ~ThreadPort() override
    {
        {
            const MutexLock lock(mMutex);
            mIsEnding = true;
            mRequests.Clear();
        }
        mRequestAdded.notify_all();
        for (const Handle thread : mThreads) {
            WaitForThread_Impl(thread);
            CloseThread_Impl(thread);
        }
    }

    void Close() override
    {
        {
            const MutexLock lock(mMutex);
            mIsClosed = true;
        }
        mReadFinished.notify_all();
    }

    SystemError Start(const ReadRequest& inRequest) override
    {
        const MutexLock lock(mMutex);
        if (!mRequests.Push(inRequest)) {
            return SystemErrors::kErrorBusy;
        }
        const SystemError refusal = mRequests.Count() > mIdle ? AddThread() : SystemErrors::kNoError;
        if (refusal != SystemErrors::kNoError && mThreads.empty()) {
            mRequests.PopNewest(); // no thread would ever run the read
            return refusal;
        }
        mRequestAdded.notify_one();
        return SystemErrors::kErrorIoPending;
    }

    // This port does not batch reads, so there is nothing to submit.
    std::size_t Submit(SystemError& outError) override
    {
        outError = SystemErrors::kNoError;
        return 0;
    }

    bool PostEmptyPacket() override { return Report(CompletedRead{ReadRequest{}, 0}); }

    bool Get(Completion& outCompletion) override
    {
        outCompletion = Completion{};
        CompletedRead finished{};
        if (!TakeCompleted(finished)) {
            return false;
        }
        const ReadRequest& request = finished.mRequest;
        return request.mFile == nullptr
               || CompleteRead(*request.mFile, *request.mOverlapped, finished.mReturned, outCompletion);
    }

    const char* Describe() const override { return mDescription; }

private:
    SystemError AddThread() TVXCORE_REQUIRES(mMutex)
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

    static void Serve(void* inPort) { static_cast<ThreadPort*>(inPort)->ServeRequests(); }

    void ServeRequests()
    {
        ReadRequest request;
        while (TakeRequest(request)) {
            Report(CompletedRead{request, ReadNow(request)});
        }
    }

    bool TakeRequest(ReadRequest& outRequest)
    {
        MutexLock lock(mMutex);
        ++mIdle;
        while (!mIsEnding && mRequests.IsEmpty()) {
            mRequestAdded.wait(lock.Lock());
        }
        --mIdle;
        if (mIsEnding) {
            return false;
        }
        outRequest = mRequests.Pop();
        return true;
    }

    // Waits for a read. Returns false if the port is closed.
    bool TakeCompleted(CompletedRead& outFinished)
    {
        MutexLock lock(mMutex);
        while (!mIsClosed && mFinished.IsEmpty()) {
            mReadFinished.wait(lock.Lock());
        }
        if (mIsClosed) {
            return false;
        }
        outFinished = mFinished.Pop();
        return true;
    }

    bool Report(const CompletedRead& inFinished)
    {
        bool hasRoom = false;
        {
            const MutexLock lock(mMutex);
            hasRoom = mFinished.Push(inFinished);
        }
        mReadFinished.notify_one();
        return hasRoom;
    }

    const char* const mDescription;
    Mutex mMutex;
    std::condition_variable mRequestAdded;
    std::condition_variable mReadFinished;
    FixedQueue<ReadRequest> mRequests TVXCORE_GUARDED_BY(mMutex);
    FixedQueue<CompletedRead> mFinished TVXCORE_GUARDED_BY(mMutex);
    std::vector<Handle> mThreads TVXCORE_GUARDED_BY(mMutex); // the destructor joins them without the lock
    std::size_t mIdle TVXCORE_GUARDED_BY(mMutex) = 0;
    bool mIsEnding TVXCORE_GUARDED_BY(mMutex) = false;
    bool mIsClosed TVXCORE_GUARDED_BY(mMutex) = false;
};

const char* DescriptionFor(int inRefusal)
{
    switch (inRefusal) {
    case 0: return "pread threads, since the program runs under valgrind";
    case EPERM: return "pread threads, since the kernel forbids io_uring (EPERM)";
    case ENOSYS: return "pread threads, since the kernel has no io_uring (ENOSYS)";
    case ENOMEM: return "pread threads, since the kernel has no memory for io_uring (ENOMEM)";
    default: return "pread threads, since the kernel refuses io_uring";
    }
}

} // namespace

std::shared_ptr<CompletionPort> MakeThreadPort(int inRefusal)
{
    return std::make_shared<ThreadPort>(DescriptionFor(inRefusal));
}

} // namespace Linux
} // namespace ORL
