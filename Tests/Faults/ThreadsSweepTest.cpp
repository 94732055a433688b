// Fails each allocation in thread records, shared queues and flushes.
#include "MemoryFaults.h"

#include <ORLSharedThreadedWorkQueue.h>
#include <ORLString.h>
#include <ORLThreadManager.h>
#include <ORLThreadedWorkQueueFlush.h>
#include <tvxcore/Debug.h>

#include <atomic>
#include <thread>

using namespace ORL;
using namespace ORLTest;

namespace {

using QueueRef = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using FlushRef = InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown>;
using Request = ThreadedWorkQueue::Request;

std::atomic<int> sReports{0};

// Counts the reports of checks without allocating.
void CountReports()
{
    sReports = 0;
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool&, const char*, const unsigned char*, const char*, long, const char*) {
        ++sReports;
        return false;
    };
    dialogs.mContract = [](const char*, const char*, long) {
        ++sReports;
        return false;
    };
    tvxcore::debug::InstallDialogs(dialogs);
}

class Counted : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit Counted(std::atomic<int>& ioRuns) : mRuns(ioRuns) {}
    void Process() override { ++mRuns; }

private:
    std::atomic<int>& mRuns;
};

void ExpectSharedQueuesUsable()
{
    std::thread([] {
        std::atomic<int> runs{0};
        const QueueRef queue =
            SharedThreadedWorkQueue::Instance()->RetrieveOrCreateSingleThreaded(ThreadPriorities::kNormal);
        ASSERT_TRUE(queue);
        EXPECT_EQ(1u, queue->GetNumberOfThreads());
        EXPECT_TRUE(queue->QueueRequest(Request(new Counted(runs))));
        SharedThreadedWorkQueue::Shutdown();
        EXPECT_EQ(1, runs.load());
    }).join();
}

// Stops the queue at the end of its scope, so that its threads hold no memory.
class StartedQueue
{
public:
    StartedQueue() : mQueue(new ThreadedWorkQueue)
    {
        mQueue->Initialize(ThreadPriorities::kNormal, 2, ConstString("Flushed"), ConstString("Sweep"));
    }
    ~StartedQueue() { mQueue->Stop(); }
    StartedQueue(const StartedQueue&) = delete;
    StartedQueue& operator=(const StartedQueue&) = delete;

    const QueueRef mQueue;
};

void ExpectFlushes(const FlushRef& inFlush)
{
    const StartedQueue started;
    std::atomic<int> runs{0};
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(started.mQueue->QueueRequest(Request(new Counted(runs))));
    }
    inFlush->Init(started.mQueue);
    inFlush->Flush();
    EXPECT_EQ(20, runs.load());
    inFlush->Init(QueueRef());
}

} // namespace

TEST(ThreadManagerSweep, RegisterAndUnregisterAThread)
{
    CountReports();
    ThreadManager::RegisterMainThread();
    const auto work = [] {
        std::exception_ptr failure;
        // The thread's default record. RegisterThread may throw after it has stored a new record, which must
        // then be unregistered.
        ThreadManager::ThreadInfo* const unnamed = ThreadManager::GetCurrentThreadInfo();
        try {
            ConstString name("Sweeper");
            ConstString module("Sweep");
            ThreadManager::RegisterThread(name, module);
        } catch (...) {
            failure = std::current_exception();
        }
        if (ThreadManager::GetCurrentThreadInfo() != unnamed) {
            ThreadManager::UnregisterThread();
        }
        if (failure) {
            std::rethrow_exception(failure);
        }
    };
    // A thread cannot register again after it has unregistered, so each round uses a new thread.
    for (const FaultyAllocator allocator : kFaultyAllocators) {
        unsigned refused = 1;
        for (unsigned number = 1; refused != 0; ++number) {
            std::int64_t left = 0;
            std::thread([&] {
                const std::int64_t before =
                    OutstandingMemory(FaultyAllocator::kHeap) + OutstandingMemory(FaultyAllocator::kSmallBlocks);
                {
                    const MemoryFaults faults(allocator, number, false);
                    try {
                        work();
                    } catch (const std::bad_alloc&) {
                    }
                    refused = faults.Refused();
                }
                left = OutstandingMemory(FaultyAllocator::kHeap) + OutstandingMemory(FaultyAllocator::kSmallBlocks)
                       - before;
            }).join();
            EXPECT_EQ(0, left) << "request " << number << " at door " << static_cast<int>(allocator);
        }
    }
    EXPECT_EQ("CorvantoMain", MakeStdString(ThreadManager::GetCurrentThreadInfo()->GetThreadName()));
    ThreadManager::UnregisterMainThread();
    EXPECT_EQ(0, sReports.load());
}

TEST(ThreadManagerSweep, StartAndStopOfTheRecords)
{
    CountReports();
    const auto work = [] {
        struct AtEnd
        {
            ~AtEnd() { ThreadManager::UnregisterMainThread(); }
        } const atEnd;
        ThreadManager::RegisterMainThread();
    };
    SweepMemory(work, [] {
        EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
        ThreadManager::RegisterMainThread();
        EXPECT_EQ("CorvantoMain", MakeStdString(ThreadManager::GetCurrentThreadInfo()->GetThreadName()));
        ThreadManager::UnregisterMainThread();
    });
}

TEST(SharedThreadedWorkQueueSweep, EachRetrieval_LeavesNothingBehind)
{
    CountReports();
    const auto work = [] {
        struct AtEnd
        {
            ~AtEnd() { SharedThreadedWorkQueue::Shutdown(); }
        } const atEnd;
        SharedThreadedWorkQueue* const shared = SharedThreadedWorkQueue::Instance();
        static_cast<void>(shared->Retrieve(ThreadPriorities::kLowest));
        static_cast<void>(shared->RetrieveSingleThreaded(ThreadPriorities::kLowest));
        static_cast<void>(shared->RetrieveOrCreateSingleThreaded(ThreadPriorities::kLowest));
        static_cast<void>(shared->RetrieveOrCreate(ThreadPriorities::kLowest));
    };
    SweepMemory(work, &ExpectSharedQueuesUsable);
    EXPECT_EQ(0, sReports.load()) << "a queue that was not stopped reports it";
}

TEST(SharedThreadedWorkQueueSweep, QueueThatCouldNotBeMade_IsMadeAtTheNextCall)
{
    SharedThreadedWorkQueue* const shared = SharedThreadedWorkQueue::Instance();
    {
        const MemoryFaults faults(FaultyAllocator::kHeap, 1, false);
        EXPECT_THROW(shared->RetrieveOrCreateSingleThreaded(ThreadPriorities::kLowest), std::bad_alloc);
    }
    EXPECT_FALSE(shared->RetrieveSingleThreaded(ThreadPriorities::kLowest));
    const QueueRef queue = shared->RetrieveOrCreateSingleThreaded(ThreadPriorities::kLowest);
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
    SharedThreadedWorkQueue::Shutdown();
}

TEST(ThreadedWorkQueueFlushSweep, FlushOfAQueueOfTwoThreads_AlwaysReturnsAndLeavesTheObjectIdle)
{
    CountReports();
    const FlushRef kept(new ThreadedWorkQueueFlush);
    SweepMemory(
        [&kept] {
            struct AtEnd
            {
                const FlushRef& mFlush;
                ~AtEnd() { mFlush->Init(QueueRef()); }
            } const atEnd{kept};
            const StartedQueue started;
            kept->Init(started.mQueue);
            kept->Flush();
            const FlushRef flush(new ThreadedWorkQueueFlush);
            flush->Init(started.mQueue);
            flush->Flush();
        },
        [&kept] { ExpectFlushes(kept); });
}
