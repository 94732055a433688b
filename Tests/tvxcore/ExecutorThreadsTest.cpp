// Tests the threads of an executor: their number and priority, their hooks, and functions that throw on them.
#include "ExecutorSupport.h"

#include <CheckRecorder.h>
#include <CurrentThread.h>
#include <Executors/ExecutorCore.h>
#include <Executors/ThreadedExecutor.h>
#include <ExpectReport.h>
#include <ProcessThreads.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <boost/make_shared.hpp>
#include <boost/thread/exceptions.hpp>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace ORLTest;
using namespace tvxcore::threads;

namespace {

std::atomic<int> sThreadsAllowed{0};

bool StartSomeThreads(void (*inFunction)(void*), void* inArgument, Platform::ThreadHandle& outThread)
{
    return sThreadsAllowed-- > 0 && Platform::StartThread_Impl(inFunction, inArgument, outThread);
}

} // namespace

TEST(Executor, PriorityOutsideTheRange_IsTheNearestOne)
{
    struct Row
    {
        int mLine;
        int mPriority;
        int mExpected;
    };
    const Row rows[] = {
        {__LINE__, 0, 0}, {__LINE__, 3, 3}, {__LINE__, 5, 5}, {__LINE__, 6, 5}, {__LINE__, 1000, 5}, {__LINE__, -1, 0},
    };
    for (const Row& row : rows) {
        const ExecutorPointer executor = CreateAsyncThreadedExecutor("test", 1, row.mPriority, Function(), Function());
        int level = -100;
        executor->QueueFunction([&level] { level = ORLTest::LevelOfThisThread(); }, 0);
        Stop(*executor);
        EXPECT_EQ(ORLTest::ExpectedThreadLevel(row.mExpected), level) << "row at line " << row.mLine;
    }
}

TEST(Executor, ThreadCount_IsAsAskedOrChosenByTheExecutor)
{
    EXPECT_EQ(1u, MakeExecutor(1)->GetThreadCount());
    EXPECT_EQ(7u, MakeExecutor(7)->GetThreadCount());
    EXPECT_LE(2u, MakeExecutor(-1)->GetThreadCount()) << "a multi-threaded executor has more than one on any machine";
    EXPECT_EQ(MakeExecutor(-1)->GetThreadCount(), MakeExecutor(0)->GetThreadCount());
}

TEST(Executor, CurrentThreadIsExecutorThread_OnlyOnItsOwnThreads)
{
    const ExecutorPointer executor = MakeExecutor(2);
    const ExecutorPointer other = MakeExecutor(1);
    BlockingList<bool> answers;
    executor->QueueFunction([&] { answers.Add(executor->CurrentThreadIsExecutorThread()); }, 0);
    executor->QueueFunction([&] { answers.Add(!other->CurrentThreadIsExecutorThread()); }, 0);
    EXPECT_EQ((std::vector<bool>{true, true}), answers.WaitFor(2));
    EXPECT_FALSE(executor->CurrentThreadIsExecutorThread());
    Stop(*executor);
    Stop(*other);
}

TEST(Executor, StartAndEndFunctions_RunOnceOnEachThread)
{
    BlockingList<std::thread::id> began;
    BlockingList<std::thread::id> ended;
    const ExecutorPointer executor = CreateAsyncThreadedExecutor(
        "hooks", 3, 3, [&] { began.Add(std::this_thread::get_id()); }, [&] { ended.Add(std::this_thread::get_id()); });
    std::vector<std::thread::id> first = began.WaitFor(3);
    EXPECT_EQ(0u, ended.Count());
    Stop(*executor);
    std::vector<std::thread::id> last = ended.Get();
    std::sort(first.begin(), first.end());
    std::sort(last.begin(), last.end());
    EXPECT_EQ(first, last);
    EXPECT_EQ(first.end(), std::adjacent_find(first.begin(), first.end()));
}

TEST(Executor, StartFunctionThatThrows_IsReportedAndTheThreadWorks)
{
    const CheckRecorder recorder;
    const ExecutorPointer executor = CreateAsyncThreadedExecutor(
        "hooks", 1, 3, [] { throw std::runtime_error("start"); }, Function());
    Event done;
    executor->QueueFunction([&done] { done.Set(); }, 0);
    done.Wait();
    Stop(*executor);
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kError).size());
}

TEST(Executor, FunctionThatThrows_IsReportedAsAWarningAndItsThreadGoesOn)
{
    const CheckRecorder recorder;
    const ExecutorPointer executor = CreateAsyncThreadedExecutor("Name", 1, 3, Function(), Function());
    std::thread::id first;
    std::thread::id last;
    executor->QueueFunction(
        [&first] {
            first = std::this_thread::get_id();
            throw std::runtime_error("reason");
        },
        0);
    executor->QueueFunction([] { throw 17; }, 0);
    executor->QueueFunction([&last] { last = std::this_thread::get_id(); }, 0);
    Stop(*executor);
    EXPECT_EQ(first, last);
    EXPECT_NE(std::thread::id(), last);
    const std::vector<CheckReport> errors = recorder.Reports(CheckReport::kError);
    ASSERT_EQ(2u, errors.size());
    ExpectReport(errors[0]).Expression(
        "$$$/tvxcore/threads/Error/FunctionThrew=A function on the thread \"Name\" has thrown: reason");
    ExpectReport(errors[1]).Expression(
        "$$$/tvxcore/threads/Error/FunctionThrew=A function on the thread \"Name\" has thrown: an exception of no "
        "standard type");
    for (const CheckReport& error : errors) {
        EXPECT_EQ(1, error.mLevel);
        EXPECT_EQ(110u, error.mPackage);
        EXPECT_EQ(1, error.mLine);
    }
}

TEST(Executor, ErrorManagerThatThrowsToo_DoesNotTakeTheThreadDown)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    const ExecutorPointer executor = MakeExecutor(1);
    Event done;
    executor->QueueFunction([] { throw std::runtime_error("reason"); }, 0);
    executor->QueueFunction([&done] { done.Set(); }, 0);
    done.Wait();
    Stop(*executor);
    EXPECT_EQ(1u, recorder.Reports().size());
}

TEST(Executor, ThreadThatTheSystemRefuses_ThrowsAndLeavesNothingBehind)
{
    for (int allowed = 0; allowed < 4; ++allowed) {
        const unsigned int before = ORLTest::CountProcessThreads();
        std::weak_ptr<ExecutorCore> watch;
        {
            const auto core = std::make_shared<ExecutorCore>("few", 3, Function(), Function());
            watch = core;
            sThreadsAllowed = allowed;
            EXPECT_THROW(boost::make_shared<ThreadedExecutor>(core, 4, &StartSomeThreads),
                         boost::thread_resource_error);
        }
        EXPECT_TRUE(watch.expired());
        ORLTest::WaitForProcessThreads(before);
    }
}
