// Tests how an executor ends: through either of the two calls that stop it, or when its last reference is released.
#include "ExecutorSupport.h"

#include <ProcessThreads.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <atomic>
#include <boost/weak_ptr.hpp>
#include <thread>
#include <vector>

using namespace ORLTest;
using tvxcore::threads::AsyncThreadedExecutor;

TEST(Executor, TerminationRequested_RunsWhatIsQueuedAndRefusesTheRest)
{
    for (const bool isPaused : {false, true}) {
        const ExecutorPointer executor = MakeExecutor(2);
        std::atomic<int> done{0};
        Event mayEnd;
        bool isTakenFromInside = true;
        executor->QueueFunction(
            [&] {
                mayEnd.Wait();
                isTakenFromInside = executor->QueueFunction([&done] { ++done; }, 0);
            },
            0);
        for (int i = 0; i < 100; ++i) {
            executor->QueueFunction([&done] { ++done; }, 0);
        }
        if (isPaused) {
            executor->Pause();
        }
        executor->RequestTermination();
        EXPECT_FALSE(executor->QueueFunction([&done] { ++done; }, 0));
        mayEnd.Set();
        executor->WaitForTermination();
        EXPECT_EQ(100, done);
        EXPECT_FALSE(isTakenFromInside);
        EXPECT_FALSE(executor->QueueFunction([&done] { ++done; }, 0));
    }
}

TEST(Executor, IsTerminated_OnlyAfterBothCallsOfAStop)
{
    const ExecutorPointer executor = MakeExecutor(2);
    EXPECT_FALSE(executor->IsTerminated());
    executor->RequestTermination();
    EXPECT_FALSE(executor->IsTerminated());
    executor->WaitForTermination();
    EXPECT_TRUE(executor->IsTerminated());
    Stop(*executor);
    EXPECT_TRUE(executor->IsTerminated());
    EXPECT_EQ(2u, executor->GetThreadCount());
}

TEST(Executor, StopOnAnOwnThread_ReturnsAtOnceAndIsAStop)
{
    const ExecutorPointer executor = MakeExecutor(2);
    Event returned;
    bool isTerminatedBefore = true;
    bool isTerminatedAfter = false;
    executor->QueueFunction(
        [&] {
            executor->WaitForTermination();
            isTerminatedBefore = executor->IsTerminated();
            Stop(*executor);
            isTerminatedAfter = executor->IsTerminated();
            returned.Set();
        },
        0);
    returned.Wait();
    executor->WaitForTermination();
    EXPECT_FALSE(isTerminatedBefore) << "waiting alone is no stop";
    EXPECT_TRUE(isTerminatedAfter);
}

TEST(Executor, SeveralThreadsThatWaitForTheEnd_AllReturnAfterIt)
{
    const ExecutorPointer executor = MakeExecutor(2);
    std::atomic<int> done{0};
    Event mayEnd;
    executor->QueueFunction(
        [&] {
            mayEnd.Wait();
            ++done;
        },
        0);
    BlockingList<int> seen;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] {
            executor->WaitForTermination();
            seen.Add(done);
        });
    }
    executor->RequestTermination();
    mayEnd.Set();
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ((std::vector<int>{1, 1, 1}), seen.Get());
    EXPECT_TRUE(executor->IsTerminated());
}

TEST(Executor, LastReferenceDropped_RunsWhatIsQueuedAndEndsTheThreads)
{
    const unsigned int before = ORLTest::CountProcessThreads();
    std::atomic<int> done{0};
    {
        const ExecutorPointer executor = MakeExecutor(3);
        for (int i = 0; i < 100; ++i) {
            executor->QueueFunction([&done] { ++done; }, 0);
        }
    }
    EXPECT_EQ(100, done);
    ORLTest::WaitForProcessThreads(before);
}

TEST(Executor, LastReferenceDroppedOnAnOwnThread_DoesNotWaitForItself)
{
    for (int round = 0; round < 100; ++round) {
        const unsigned int before = ORLTest::CountProcessThreads();
        BlockingList<int> done;
        ExecutorPointer executor = MakeExecutor(2);
        Event mayDrop;
        const boost::weak_ptr<AsyncThreadedExecutor> watch(executor);
        AsyncThreadedExecutor& queue = *executor;
        queue.QueueFunction(
            [&mayDrop, &done, owner = executor]() mutable {
                mayDrop.Wait();
                done.Add(0);
            },
            0);
        queue.QueueFunction([&done] { done.Add(1); }, 0);
        executor.reset();
        mayDrop.Set();
        done.WaitFor(2);
        ORLTest::WaitForProcessThreads(before);
        EXPECT_TRUE(watch.expired());
    }
}
