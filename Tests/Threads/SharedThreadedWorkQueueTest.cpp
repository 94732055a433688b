#include <ORLSharedThreadedWorkQueue.h>

#include <ORLWaitableGate.h>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace ORL;

namespace {

using QueueRef = SharedThreadedWorkQueue::QueueRef;
using Request = ThreadedWorkQueue::Request;

class OpensGate : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit OpensGate(WaitableGate& inGate) : mGate(inGate) {}
    void Process() override { mGate.Open(); }

private:
    WaitableGate& mGate;
};

// Each test begins and ends without an instance.
class SharedQueues : public testing::Test
{
protected:
    void SetUp() override { SharedThreadedWorkQueue::Shutdown(); }
    void TearDown() override { SharedThreadedWorkQueue::Shutdown(); }

    SharedThreadedWorkQueue& Shared() { return *SharedThreadedWorkQueue::Instance(); }
};

} // namespace

TEST_F(SharedQueues, PriorityWithoutQueue_IsNullUntilItIsMade)
{
    EXPECT_FALSE(Shared().Retrieve(2));
    EXPECT_FALSE(Shared().Retrieve(2)) << "asking makes none";
    const QueueRef made = Shared().RetrieveOrCreate(2);
    ASSERT_TRUE(made);
    EXPECT_EQ(made.GetPtr(), Shared().Retrieve(2).GetPtr());
    EXPECT_FALSE(Shared().RetrieveSingleThreaded(2));
}

TEST_F(SharedQueues, SamePriorityTwice_IsOneQueue)
{
    EXPECT_EQ(Shared().RetrieveOrCreate(3).GetPtr(), Shared().RetrieveOrCreate(3).GetPtr());
    EXPECT_EQ(Shared().RetrieveOrCreateSingleThreaded(3).GetPtr(),
              Shared().RetrieveOrCreateSingleThreaded(3).GetPtr());
}

TEST_F(SharedQueues, MultiAndSingleThreaded_AreTwoQueues)
{
    const QueueRef multi = Shared().RetrieveOrCreate(3);
    const QueueRef single = Shared().RetrieveOrCreateSingleThreaded(3);
    EXPECT_NE(multi.GetPtr(), single.GetPtr());
    EXPECT_EQ(1u, single->GetNumberOfThreads());
    EXPECT_GE(multi->GetNumberOfThreads(), 1u);
}

TEST_F(SharedQueues, Queue_RunsRequests)
{
    WaitableGate gate;
    ASSERT_TRUE(Shared().RetrieveOrCreate(3)->QueueRequest(Request(new OpensGate(gate))));
    EXPECT_EQ(kSuccess, gate.Wait(-1));
    SharedThreadedWorkQueue::Shutdown(); // who opens a gate may still be in it when the wait is over
}

TEST_F(SharedQueues, PriorityOutsideTheRange_IsAKeyOfItsOwn)
{
    EXPECT_NE(Shared().RetrieveOrCreateSingleThreaded(17).GetPtr(),
              Shared().RetrieveOrCreateSingleThreaded(3).GetPtr());
    const QueueRef negative = Shared().RetrieveOrCreateSingleThreaded(-1);
    EXPECT_EQ(negative.GetPtr(), Shared().RetrieveSingleThreaded(-1).GetPtr());
}

TEST_F(SharedQueues, TenThreadsAskForTheInstanceAtOnce_AllGetTheSame)
{
    for (int round = 0; round < 50; ++round) {
        SharedThreadedWorkQueue::Shutdown();
        std::atomic<int> ready{0};
        std::vector<SharedThreadedWorkQueue*> seen(10);
        std::vector<std::thread> threads;
        for (SharedThreadedWorkQueue*& place : seen) {
            threads.emplace_back([&ready, &place] {
                ++ready;
                while (ready != 10) {
                    std::this_thread::yield();
                }
                place = SharedThreadedWorkQueue::Instance();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (SharedThreadedWorkQueue* const place : seen) {
            ASSERT_EQ(seen[0], place);
        }
    }
}

TEST_F(SharedQueues, ManyThreadsAskForOnePriority_ShareOneQueue)
{
    SharedThreadedWorkQueue& shared = Shared();
    std::vector<QueueRef> seen(8);
    std::vector<std::thread> threads;
    for (QueueRef& place : seen) {
        threads.emplace_back([&shared, &place] { place = shared.RetrieveOrCreateSingleThreaded(1); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const QueueRef& place : seen) {
        EXPECT_EQ(seen[0].GetPtr(), place.GetPtr());
    }
}

TEST_F(SharedQueues, ShutdownWithoutInstanceAndTwice_DoesNothing)
{
    SharedThreadedWorkQueue::Shutdown();
    Shared().RetrieveOrCreateSingleThreaded(3);
    SharedThreadedWorkQueue::Shutdown();
    SharedThreadedWorkQueue::Shutdown();
}

TEST_F(SharedQueues, AfterShutdown_TheInstanceIsNewAndEmpty)
{
    Shared().RetrieveOrCreateSingleThreaded(3);
    Shared().RetrieveOrCreate(3);
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_FALSE(Shared().Retrieve(3));
    EXPECT_FALSE(Shared().RetrieveSingleThreaded(3));
}

TEST_F(SharedQueues, ReferenceKeptAcrossShutdown_IsAStoppedQueue)
{
    WaitableGate gate;
    const QueueRef queue = Shared().RetrieveOrCreateSingleThreaded(3);
    ASSERT_TRUE(queue->QueueRequest(Request(new OpensGate(gate))));
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_EQ(kSuccess, gate.Wait(0)) << "what was queued has run";
    EXPECT_FALSE(queue->QueueRequest(Request(new OpensGate(gate))));
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
}
