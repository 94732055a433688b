// Tests an executor that is paused.
#include "ExecutorSupport.h"

#include <Signals.h>

#include <gtest/gtest.h>

#include <atomic>

using namespace ORLTest;

TEST(Executor, Paused_StartsNothingUntilResumed)
{
    const ExecutorPointer executor = MakeExecutor(2);
    BlockingList<int> started;
    executor->Pause();
    executor->Pause();
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(executor->QueueFunction([&started] { started.Add(0); }, 0));
    }
    EXPECT_EQ(0u, started.Count());
    executor->Resume();
    EXPECT_EQ(10u, started.WaitFor(10).size());
    Stop(*executor);
}

TEST(Executor, PausedByARunningFunction_HoldsBackTheNextOne)
{
    const ExecutorPointer executor = MakeExecutor(1);
    Event isPaused;
    std::atomic<bool> secondRan{false};
    bool ranBeforeResume = true;
    executor->QueueFunction(
        [&] {
            executor->Pause();
            isPaused.Set();
        },
        0);
    executor->QueueFunction([&] { secondRan = true; }, 0);
    isPaused.Wait();
    ranBeforeResume = secondRan;
    executor->Resume();
    Stop(*executor);
    EXPECT_FALSE(ranBeforeResume);
    EXPECT_TRUE(secondRan);
}

TEST(Executor, BlockWhilePaused_ReturnsAtOnceWhenNotPaused)
{
    const ExecutorPointer executor = MakeExecutor(1);
    executor->BlockWhilePaused();
    executor->Pause();
    executor->Resume();
    executor->BlockWhilePaused();
    Stop(*executor);
    executor->Pause();
    executor->BlockWhilePaused();
}

TEST(Executor, BlockWhilePaused_IsEndedByResumeAndByTermination)
{
    for (const bool byTermination : {false, true}) {
        const ExecutorPointer executor = MakeExecutor(1);
        std::atomic<bool> isEnding{false};
        bool wasEndingWhenReleased = false;
        Event isRunning;
        executor->QueueFunction(
            [&] {
                executor->Pause();
                isRunning.Set();
                executor->BlockWhilePaused();
                wasEndingWhenReleased = isEnding;
            },
            0);
        isRunning.Wait();
        isEnding = true;
        if (byTermination) {
            executor->RequestTermination();
        } else {
            executor->Resume();
        }
        Stop(*executor);
        EXPECT_TRUE(wasEndingWhenReleased);
    }
}
