#include <ORLThreadedWorkQueueFlush.h>

#include <CheckRecorder.h>
#include <Executors/CoreClock.h>
#include <ExpectReport.h>
#include <ORLConstString.h>
#include <Stress.h>
#include <tvxcore/Guid.h>

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ORL;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;

namespace {

using QueueRef = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using FlushRef = InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown>;
using Request = ThreadedWorkQueue::Request;

class Runs : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit Runs(std::function<void()> inWork) : mWork(std::move(inWork)) {}
    void Process() override { mWork(); }

private:
    std::function<void()> mWork;
};

Request Work(std::function<void()> inWork)
{
    return Request(new Runs(std::move(inWork)));
}

QueueRef StartedQueue(int inThreads)
{
    QueueRef queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, inThreads, ConstString("Flushed"), ConstString("Test"));
    return queue;
}

FlushRef FlushOf(const QueueRef& inQueue)
{
    FlushRef flush(new ThreadedWorkQueueFlush);
    flush->Init(inQueue);
    return flush;
}

// Expects that inFlush can flush again. The flush would hang if an earlier one had left its gates or count changed.
void ExpectIdle(const FlushRef& inFlush, const QueueRef& inQueue)
{
    inFlush->Init(inQueue);
    inFlush->Flush();
}

void ExpectMessages(const ORLTest::CheckRecorder& inRecorder, const std::vector<std::string>& inMessages)
{
    const std::vector<CheckReport> reports = inRecorder.Reports();
    ASSERT_EQ(inMessages.size(), reports.size());
    for (std::size_t i = 0; i < reports.size(); ++i) {
        ExpectReport(reports[i])
            .Kind(CheckReport::kAssert)
            .Message(inMessages[i])
            .Function("ORL::ThreadedWorkQueueFlush::Flush");
    }
}

} // namespace

TEST(ThreadedWorkQueueFlush, WithoutAQueue_IsReportedAndReturns)
{
    ORLTest::CheckRecorder recorder;
    FlushRef flush(new ThreadedWorkQueueFlush);
    flush->Flush();
    flush->Init(QueueRef());
    flush->Flush();
    const std::string message = "Init was not called in ThreadedWorkQueueFlush, or the provided Queue was NULL\r\n";
    ExpectMessages(recorder, {message, message});
    ExpectReport(recorder.Reports()[0]).Expression("false");
}

TEST(ThreadedWorkQueueFlush, OnAThreadOfTheQueue_IsReportedAndReturnsWithoutWaiting)
{
    ORLTest::CheckRecorder recorder;
    const QueueRef queue = StartedQueue(1);
    const FlushRef flush = FlushOf(queue);
    WaitableGate done;
    queue->QueueRequest(Work([&] {
        flush->Flush();
        done.Open();
    }));
    EXPECT_EQ(kSuccess, done.Wait(-1));
    ExpectMessages(recorder, {"Attempted to flush a Queue from within the Queue.  This is not what you intended.\r\n"});
    ExpectIdle(flush, queue);
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, QueueThatWasNeverInitialised_HasNoThreads)
{
    ORLTest::CheckRecorder recorder;
    FlushOf(QueueRef(new ThreadedWorkQueue))->Flush();
    ExpectMessages(recorder, {"The Queue to flush has no threads.\r\n"});
}

TEST(ThreadedWorkQueueFlush, FourThreadsAndAHundredRequests_AllHaveFinished)
{
    const QueueRef queue = StartedQueue(4);
    const FlushRef flush = FlushOf(queue);
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> finished{0};
        for (int i = 0; i < 100; ++i) {
            ASSERT_TRUE(queue->QueueRequest(Work([&finished] { ++finished; })));
        }
        flush->Flush();
        ASSERT_EQ(100, finished.load());
    }
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, OneThread_IsTheLastArrivalAtOnce)
{
    const QueueRef queue = StartedQueue(1);
    const FlushRef flush = FlushOf(queue);
    bool finished = false;
    queue->QueueRequest(Work([&finished] { finished = true; }));
    flush->Flush();
    EXPECT_TRUE(finished);
    flush->Flush();
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, ManyThreadsFlushOneObject_AreServedOneAfterTheOther)
{
    const QueueRef queue = StartedQueue(3);
    const FlushRef flush = FlushOf(queue);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                std::atomic<bool> finished{false};
                queue->QueueRequest(Work([&finished] { finished = true; }));
                flush->Flush();
                EXPECT_TRUE(finished.load());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ExpectIdle(flush, queue);
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, IdleProcessBesideIt_IsFlushedLikeARequest)
{
    tvxcore::threads::ManualClock clock;
    const QueueRef queue = StartedQueue(2);
    const FlushRef flush = FlushOf(queue);
    std::atomic<int> turns{0};
    std::atomic<int> finished{0};
    queue->SetIdleProcess(Work([&turns] { ++turns; }), 1);
    for (int round = 1; round <= 100; ++round) {
        queue->QueueRequest(Work([&finished] { ++finished; }));
        clock.Advance(1'000'000); // makes the idle process due
        flush->Flush();
        ASSERT_EQ(round, turns.load());
        ASSERT_EQ(round, finished.load());
    }
    queue->ClearIdleProcess();
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, PausedQueue_IsFlushedAfterResumeAndNotBefore)
{
    // Counts references; each queued item holds a reference.
    struct Counted : ThreadedWorkQueueFlush
    {
        void AddRef() override
        {
            ++mReferences;
            ThreadedWorkQueueFlush::AddRef();
        }
        std::atomic<int> mReferences{0};
    };
    const QueueRef queue = StartedQueue(2);
    Counted* const counted = new Counted;
    const FlushRef flush(counted);
    flush->Init(queue);
    queue->Pause();
    const int before = counted->mReferences;
    std::atomic<bool> finished{false};
    std::atomic<bool> hasReturned{false};
    queue->QueueRequest(Work([&finished] { finished = true; }));
    std::thread flusher([&] {
        flush->Flush();
        EXPECT_TRUE(finished.load());
        hasReturned = true;
    });
    while (counted->mReferences < before + 2) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(finished.load());
    EXPECT_FALSE(hasReturned.load()) << "both items are queued, and none may start";
    queue->Resume();
    flusher.join();
    EXPECT_TRUE(hasReturned.load());
    queue->Stop();
}

// A queue that is being stopped may refuse some items of a flush; no flusher may hang.
TEST(ThreadedWorkQueueFlush, EightFlushersBesideIdleWorkPausesAndAStop_AllReturn)
{
    for (int round = 0; round < ORLTest::Rounds(3); ++round) {
        const ORLTest::CheckRecorder recorder; // absorbs the reports of refused items
        const QueueRef queue = StartedQueue(2);
        const FlushRef flush = FlushOf(queue);
        std::atomic<int> idleTurns{0};
        queue->SetIdleProcess(Work([&idleTurns] { ++idleTurns; }), 1);
        std::atomic<int> flushed{0};
        std::vector<std::thread> flushers;
        for (int i = 0; i < 8; ++i) {
            flushers.emplace_back([&] {
                for (int turn = 0; turn < 20; ++turn) {
                    flush->Flush();
                    ++flushed;
                }
            });
        }
        while (flushed.load() < 40) {
            queue->Pause();
            std::this_thread::yield();
            queue->Resume();
        }
        queue->ClearIdleProcess();
        queue->Stop();
        for (std::thread& flusher : flushers) {
            flusher.join();
        }
        EXPECT_EQ(160, flushed.load());
        const QueueRef another = StartedQueue(2);
        ExpectIdle(flush, another);
        another->Stop();
    }
}

TEST(ThreadedWorkQueueFlush, QueueThatRefusesEveryItem_IsReportedAndReturnsIdle)
{
    const QueueRef stopped = StartedQueue(3);
    stopped->Stop();
    const FlushRef flush = FlushOf(stopped);
    {
        ORLTest::CheckRecorder recorder;
        flush->Flush();
        const std::vector<CheckReport> reports = recorder.Reports();
        ASSERT_EQ(4u, reports.size());
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ("queuedSuccessfully", reports[static_cast<std::size_t>(i)].mExpression);
        }
        ExpectReport(reports[3]).Message("Something went awry while queuing Flush items.\r\n").Expression("false");
    }
    const QueueRef running = StartedQueue(2);
    ExpectIdle(flush, running);
    running->Stop();
}

namespace {

// A flush whose items stay in Process for a while after the flushing thread has been released.
class SlowFlush : public ThreadedWorkQueueFlush
{
public:
    SlowFlush(std::atomic<bool>& inMayLeave, std::atomic<int>& ioDestroyed, std::atomic<int>& ioSeenDestroyed)
        : mMayLeave(inMayLeave), mDestroyed(ioDestroyed), mSeenDestroyed(ioSeenDestroyed)
    {
    }
    ~SlowFlush() override { ++mDestroyed; }

    void Process() override
    {
        std::atomic<int>& seen = mSeenDestroyed; // copied, because the object may be destroyed before the last use
        const std::atomic<int>& destroyed = mDestroyed;
        const std::atomic<bool>& mayLeave = mMayLeave;
        ThreadedWorkQueueFlush::Process();
        while (!mayLeave) {
            std::this_thread::yield();
        }
        seen += destroyed;
    }

private:
    std::atomic<bool>& mMayLeave;
    std::atomic<int>& mDestroyed;
    std::atomic<int>& mSeenDestroyed;
};

} // namespace

TEST(ThreadedWorkQueueFlush, ReferenceDroppedWhileQueued_LivesUntilTheItemsAreGone)
{
    const QueueRef queue = StartedQueue(2);
    for (int round = 0; round < 10; ++round) {
        std::atomic<bool> mayLeave{false};
        std::atomic<int> destroyed{0};
        std::atomic<int> seenDestroyed{0};
        FlushRef flush(new SlowFlush(mayLeave, destroyed, seenDestroyed));
        flush->Init(queue);
        flush->Flush();
        flush = FlushRef(); // the remaining references belong to the items, which are still in Process
        EXPECT_EQ(0, destroyed);
        mayLeave = true;
        const FlushRef behind = FlushOf(queue);
        behind->Flush(); // returns when both items have left Process
        while (destroyed == 0) {
            std::this_thread::yield(); // the executor releases an item after Process has returned
        }
        EXPECT_EQ(0, seenDestroyed) << "an item was in Process of an object that was gone";
        EXPECT_EQ(1, destroyed);
    }
    queue->Stop();
}

TEST(ThreadedWorkQueueFlush, QueryInterface_AnswersItsThreeIdentifiers)
{
    const FlushRef flush(new ThreadedWorkQueueFlush);
    const Guid answered[] = {
        Guid(0x793307d6, 0xfe55, 0x4055, 0xb1, 0x34, 0x3a, 0xaf, 0xb1, 0x4d, 0x0a, 0x74),
        Guid(0x1df08fed, 0x0ee7, 0x42e7, 0x92, 0xf4, 0x8c, 0xb3, 0x4d, 0x39, 0x9c, 0xe0),
        Guid(0x4F33C5DF4F9CB3F7u, 0xB93F9CDF4C78A5B5u),
    };
    for (const Guid& id : answered) {
        void* found = nullptr;
        EXPECT_EQ(kSuccess, flush->QueryInterface(id, &found));
        ASSERT_NE(nullptr, found);
        static_cast<ORLUnknown*>(found)->Release();
    }
    void* found = &found;
    EXPECT_EQ(kNoSuchInterface, flush->QueryInterface(kInterfaceID_ThreadedWorkQueue, &found));
    EXPECT_EQ(nullptr, found);
}
