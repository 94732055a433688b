// Tests executors and repeated functions when memory runs out.
#include "ExecutorSupport.h"

#include <AllocationFaults.h>
#include <Executors/CoreClock.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <new>
#include <vector>

using namespace ORLTest;
using namespace tvxcore::threads;
namespace AllocationFaults = tvxcore::utility::AllocationFaults;

namespace {

AllocationFaults::Plan Refuse(std::uint64_t inFirst, std::uint64_t inHowMany)
{
    AllocationFaults::Plan plan;
    plan.mFirst = inFirst;
    plan.mFailureCount = inHowMany;
    plan.mOfThisThreadOnly = true;
    return plan;
}

} // namespace

TEST(ExecutorMemory, FunctionThatFindsNoMemory_IsNotQueuedAndTheOthersRun)
{
    const ExecutorPointer executor = MakeExecutor(1);
    BlockingList<int> ran;
    std::vector<int> accepted;
    {
        const AllocationFaults::Scope faults(Refuse(4, 3));
        for (int i = 0; i < 10; ++i) {
            try {
                EXPECT_TRUE(executor->QueueFunction([&ran, i] { ran.Add(i); }, 0));
                accepted.push_back(i);
            } catch (const std::bad_alloc&) {
            }
        }
        EXPECT_EQ(3u, faults.Refused());
    }
    Stop(*executor);
    EXPECT_EQ((std::vector<int>{0, 1, 2, 6, 7, 8, 9}), accepted);
    EXPECT_EQ(accepted, ran.Get());
}

TEST(ExecutorMemory, NoMemoryWhileItEnds_ItEndsAndRunsWhatWasQueued)
{
    const ExecutorPointer executor = MakeExecutor(1);
    std::atomic<int> runs{0};
    executor->Pause();
    for (int i = 0; i < 100; ++i) {
        executor->QueueFunction([&runs] { ++runs; }, 0);
    }
    AllocationFaults::Plan plan = Refuse(1, AllocationFaults::kAllFurther);
    plan.mOfThisThreadOnly = false;
    const AllocationFaults::Scope faults(plan);
    EXPECT_THROW(executor->QueueFunction([&runs] { ++runs; }, 0), std::bad_alloc);
    Stop(*executor);
    EXPECT_EQ(100, runs.load());
}

// An allocation of the timer's thread fails for one run; the next run succeeds.
TEST(ExecutorMemory, RepeatedFunctionThatFindsNoMemory_RunsAgainAfterTheDelay)
{
    constexpr std::int64_t kDelay = 10'000'000;
    ManualClock clock;
    const ExecutorPointer executor = MakeExecutor(1);
    std::atomic<int> runs{0};
    {
        const RepeatDelayFunction repeat(
            executor, [&runs] { ++runs; }, 10);
        {
            AllocationFaults::Plan plan = Refuse(1, 1);
            plan.mOfThisThreadOnly = false;
            const AllocationFaults::Scope faults(plan);
            clock.Advance(kDelay);
            EXPECT_EQ(1u, faults.Refused());
        }
        clock.Advance(kDelay);
        Event ran;
        executor->QueueFunction([&ran] { ran.Set(); }, 0);
        ran.Wait();
        EXPECT_EQ(1, runs.load());
    }
    Stop(*executor);
}
