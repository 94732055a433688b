// Tests the idle process of a work queue.
#include <ORLThreadedWorkQueue.h>

#include <CheckRecorder.h>
#include <Executors/CoreClock.h>
#include <QueueRequests.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <thread>
#include <utility>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::Event;
using ORLTest::MakeRequest;

namespace {

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using Request = ThreadedWorkQueue::Request;

class IdleProcess : public testing::Test
{
protected:
    IdleProcess() : mQueue(new ThreadedWorkQueue)
    {
        mQueue->Initialize(ThreadPriorities::kNormal, 0, ConstString("Idle"), ConstString("Module"));
    }
    ~IdleProcess() override
    {
        mQueue->ClearIdleProcess();
        mQueue->Stop();
    }

    // Advances the clock and returns when all requests that became due have run.
    void AdvanceAndDrain(std::int64_t inMilliseconds)
    {
        mClock.Advance(inMilliseconds * 1'000'000);
        Event done;
        ASSERT_TRUE(mQueue->QueueRequest(MakeRequest([&done] { done.Set(); })));
        done.Wait();
    }

    tvxcore::threads::ManualClock mClock;
    Queue mQueue;
    std::atomic<int> mRuns{0};
};

} // namespace

TEST_F(IdleProcess, Set_RunsAtItsInterval)
{
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    AdvanceAndDrain(9);
    EXPECT_EQ(0, mRuns);
    AdvanceAndDrain(1);
    AdvanceAndDrain(10);
    EXPECT_EQ(2, mRuns);
}

TEST_F(IdleProcess, RunsOnTheQueuesThread)
{
    bool isOwn = false;
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([&] { isOwn = mQueue->CurrentThreadIsQueueThread(); }), 1));
    AdvanceAndDrain(1);
    mQueue->ClearIdleProcess();
    EXPECT_TRUE(isOwn);
}

TEST_F(IdleProcess, IntervalBelowOne_IsRefusedAndKeepsTheOneInstalled)
{
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    const Request other = MakeRequest([] { ADD_FAILURE() << "this one was refused"; });
    EXPECT_FALSE(mQueue->SetIdleProcess(other, 0));
    EXPECT_FALSE(mQueue->SetIdleProcess(other, -1));
    EXPECT_FALSE(mQueue->SetIdleProcess(other, -2147483647 - 1));
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
}

TEST_F(IdleProcess, NullRequest_IsRefusedAndKeepsTheOneInstalled)
{
    const CheckRecorder recorder;
    EXPECT_FALSE(mQueue->SetIdleProcess(Request(), 10));
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    EXPECT_FALSE(mQueue->SetIdleProcess(Request(), 10));
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST_F(IdleProcess, SetAgain_TakesThePlaceOfTheEarlierOne)
{
    auto life = std::make_shared<int>();
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([life] { ADD_FAILURE() << "this one was replaced"; }), 10));
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    EXPECT_EQ(1, life.use_count());
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
}

// The new idle process is built first, so a failure leaves the earlier one running.
TEST_F(IdleProcess, SetAgainWithAFailure_KeepsTheEarlierOne)
{
    struct Refusing : UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
    {
        void AddRef() override
        {
            if (mRefuses) {
                throw std::bad_alloc();
            }
            UnknownImpl::AddRef();
        }
        void Process() override { ADD_FAILURE() << "this one was not installed"; }
        bool mRefuses = false;
    };
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    Refusing* const refusing = new Refusing;
    const Request request(refusing);
    Request argument(request);
    refusing->mRefuses = true;
    EXPECT_THROW(mQueue->SetIdleProcess(std::move(argument), 10), std::bad_alloc);
    refusing->mRefuses = false;
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
}

TEST_F(IdleProcess, Cleared_NeverRunsAgainAndIsLetGo)
{
    auto life = std::make_shared<int>();
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this, life] { ++mRuns; }), 10));
    AdvanceAndDrain(10);
    mQueue->ClearIdleProcess();
    EXPECT_EQ(1, life.use_count());
    AdvanceAndDrain(100);
    EXPECT_EQ(1, mRuns);
    mQueue->ClearIdleProcess();
}

TEST_F(IdleProcess, ClearedByItself_DoesNotWaitForItself)
{
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([this] {
                                           ++mRuns;
                                           mQueue->ClearIdleProcess();
                                       }),
                                       10));
    AdvanceAndDrain(10);
    AdvanceAndDrain(100);
    EXPECT_EQ(1, mRuns);
}

TEST_F(IdleProcess, ReplacedByItself_GoesOnAsTheNewOne)
{
    std::atomic<int> later{0};
    const Request second = MakeRequest([&later] { ++later; });
    EXPECT_TRUE(mQueue->SetIdleProcess(MakeRequest([&, this] {
                                           ++mRuns;
                                           mQueue->SetIdleProcess(second, 10);
                                       }),
                                       10));
    AdvanceAndDrain(10);
    AdvanceAndDrain(10);
    mQueue->ClearIdleProcess();
    EXPECT_EQ(1, mRuns);
    EXPECT_EQ(1, later);
}

TEST_F(IdleProcess, ClearedWithNoneInstalled_TakesNoLock)
{
    // The queue calls AddRef under its lock while it installs the request. A concurrent Clear must not block.
    struct CallbackOnAddRef : UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
    {
        explicit CallbackOnAddRef(ThreadedWorkQueue& inQueue) : mQueue(inQueue) {}
        void AddRef() override
        {
            std::thread([this] { mQueue.ClearIdleProcess(); }).join();
            ++mCounted;
            UnknownImpl::AddRef();
        }
        void Process() override {}
        ThreadedWorkQueue& mQueue;
        int mCounted = 0;
    };
    CallbackOnAddRef* const callback = new CallbackOnAddRef(*mQueue.GetPtr());
    const Request request(callback);
    Request argument(request);
    const int before = callback->mCounted;
    EXPECT_TRUE(mQueue->SetIdleProcess(std::move(argument), 10));
    EXPECT_LT(before, callback->mCounted) << "nothing was counted under the lock, so this test shows nothing";
}

TEST_F(IdleProcess, StoppedQueue_KeepsItInstalledButQuiet)
{
    const Queue queue(new ThreadedWorkQueue);
    queue->Initialize(3, 0, ConstString("Idle"), ConstString("Module"));
    EXPECT_TRUE(queue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    queue->Stop();
    AdvanceAndDrain(10);
    AdvanceAndDrain(10);
    EXPECT_EQ(0, mRuns);
    EXPECT_TRUE(queue->SetIdleProcess(MakeRequest([this] { ++mRuns; }), 10));
    AdvanceAndDrain(10);
    EXPECT_EQ(0, mRuns);
}
