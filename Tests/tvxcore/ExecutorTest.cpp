#include <CheckRecorder.h>
#include <CurrentThread.h>
#include <Executors/ExecutorCore.h>
#include <Executors/ThreadedExecutor.h>
#include <ExpectReport.h>
#include <ProcessThreads.h>
#include <Signals.h>
#include <tvxcore/Executor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <boost/make_shared.hpp>
#include <boost/thread/exceptions.hpp>
#include <boost/weak_ptr.hpp>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace tvxcore::threads;
using ORLTest::Barrier;
using ORLTest::BlockingList;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::Event;
using ORLTest::ExpectReport;

namespace {

using ExecutorPointer = boost::shared_ptr<AsyncThreadedExecutor>;
using Function = boost::function<void()>;

ExecutorPointer Make(int inThreads)
{
    return CreateAsyncThreadedExecutor("test", inThreads, 3, Function(), Function());
}

void Stop(AsyncExecutor& ioExecutor)
{
    ioExecutor.RequestTermination();
    ioExecutor.WaitForTermination();
}

// Returns when everything queued so far has run.
void Drain(AsyncExecutor& ioExecutor)
{
    const std::size_t threads = ioExecutor.GetThreadCount();
    Barrier all(threads + 1);
    BlockingList<int> left;
    for (std::size_t i = 0; i < threads; ++i) {
        ASSERT_TRUE(ioExecutor.QueueFunction(
            [&] {
                all.Join();
                left.Add(0);
            },
            0));
    }
    all.Join();
    left.WaitFor(threads);
}

} // namespace

TEST(Executor, OneThread_RunsFunctionsInTheirOrder)
{
    const ExecutorPointer executor = Make(1);
    std::vector<int> order;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(executor->QueueFunction([&order, i] { order.push_back(i); }, 0));
    }
    Stop(*executor);
    std::vector<int> expected(1000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(expected, order);
}

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

TEST(Executor, ThreeThreads_StartFunctionsInTheirOrder)
{
    constexpr int kThreads = 3;
    constexpr int kFunctions = 30;
    const ExecutorPointer executor = Make(kThreads);
    BlockingList<int> started;
    std::vector<Event> mayEnd(kFunctions);
    for (int i = 0; i < kFunctions; ++i) {
        executor->QueueFunction(
            [&, i] {
                started.Add(i);
                mayEnd[static_cast<std::size_t>(i)].Wait();
            },
            0);
    }
    for (int i = 0; i < kFunctions; ++i) {
        const std::size_t running = static_cast<std::size_t>(std::min(i + kThreads, kFunctions));
        std::vector<int> soFar = started.WaitFor(running);
        ASSERT_EQ(running, soFar.size()) << "a function more than there are threads";
        std::sort(soFar.begin(), soFar.end());
        ASSERT_EQ(static_cast<int>(running) - 1, soFar.back()) << "one was left out";
        mayEnd[static_cast<std::size_t>(i)].Set();
    }
    Stop(*executor);
}

TEST(Executor, FunctionsThatWaitForEachOther_AllFindAThread)
{
    for (int round = 0; round < 300; ++round) {
        const std::size_t threads = 2 + static_cast<std::size_t>(round % 3);
        const ExecutorPointer executor = Make(static_cast<int>(threads));
        Barrier first(threads);
        Barrier second(threads);
        if (round % 2 == 0) {
            executor->Pause();
        }
        for (std::size_t i = 0; i < threads; ++i) {
            executor->QueueFunction([&first] { first.Join(); }, 0);
        }
        for (std::size_t i = 0; i < threads; ++i) {
            executor->QueueFunction([&second] { second.Join(); }, 0);
        }
        executor->Resume();
        Stop(*executor);
    }
}

TEST(Executor, WhatWasQueuedBefore_HasRunWhenEveryThreadHasComeToTheMeeting)
{
    for (int round = 0; round < 300; ++round) {
        const ExecutorPointer executor = Make(1 + round % 4);
        std::atomic<int> done{0};
        for (int i = 0; i < 100; ++i) {
            executor->QueueFunction([&done] { ++done; }, 0);
        }
        Drain(*executor);
        EXPECT_EQ(100, done);
        Stop(*executor);
    }
}

TEST(Executor, OneFunctionAtATimeToSleepingThreads_AlwaysWakesOne)
{
    const ExecutorPointer executor = Make(3);
    BlockingList<int> done;
    for (std::size_t i = 1; i <= 3000; ++i) {
        executor->QueueFunction([&done] { done.Add(0); }, 0);
        done.WaitFor(i);
        if (i % 3 == 0) {
            std::this_thread::yield();
        }
    }
    Stop(*executor);
}

TEST(Executor, ProducersOnManyThreads_KeepTheirOwnOrderAndLoseNothing)
{
    constexpr int kProducers = 4;
    constexpr int kEach = 2000;
    for (const int threads : {1, 3}) {
        const ExecutorPointer executor = Make(threads);
        std::vector<std::atomic<int>> seen(kProducers * kEach);
        std::vector<int> last(kProducers, -1);
        bool isInOrder = true;
        std::vector<std::thread> producers;
        for (int producer = 0; producer < kProducers; ++producer) {
            producers.emplace_back([&, producer] {
                for (int i = 0; i < kEach; ++i) {
                    executor->QueueFunction(
                        [&, producer, i] {
                            ++seen[static_cast<std::size_t>(producer * kEach + i)];
                            if (threads == 1) {
                                int& previous = last[static_cast<std::size_t>(producer)];
                                isInOrder = isInOrder && previous == i - 1;
                                previous = i;
                            }
                        },
                        0);
                }
            });
        }
        for (std::thread& producer : producers) {
            producer.join();
        }
        Stop(*executor);
        EXPECT_TRUE(isInOrder);
        EXPECT_TRUE(std::all_of(seen.begin(), seen.end(), [](const std::atomic<int>& count) { return count == 1; }));
    }
}

TEST(Executor, QueuedFunction_IsCopiedOnceAndGoneAfterItsRun)
{
    struct Counted
    {
        explicit Counted(std::atomic<int>& inCopies, std::shared_ptr<int> inLife) : mCopies(inCopies), mLife(inLife) {}
        Counted(const Counted& inOther) : mCopies(inOther.mCopies), mLife(inOther.mLife) { ++mCopies; }
        void operator()() const {}
        std::atomic<int>& mCopies;
        std::shared_ptr<int> mLife;
    };
    std::atomic<int> copies{0};
    auto life = std::make_shared<int>();
    const ExecutorPointer executor = Make(1);
    {
        const Function function(Counted(copies, life));
        copies = 0;
        executor->QueueFunction(function, 0);
    }
    Drain(*executor);
    EXPECT_EQ(1, copies);
    EXPECT_EQ(1, life.use_count());
    Stop(*executor);
}

TEST(Executor, EmptyFunction_IsTakenAndDoesNothing)
{
    const CheckRecorder recorder;
    const ExecutorPointer executor = Make(1);
    EXPECT_TRUE(executor->QueueFunction(Function(), 0));
    Stop(*executor);
    EXPECT_TRUE(recorder.Reports().empty());
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
    const ExecutorPointer executor = Make(1);
    Event done;
    executor->QueueFunction([] { throw std::runtime_error("reason"); }, 0);
    executor->QueueFunction([&done] { done.Set(); }, 0);
    done.Wait();
    Stop(*executor);
    EXPECT_EQ(1u, recorder.Reports().size());
}

TEST(Executor, Paused_StartsNothingUntilResumed)
{
    const ExecutorPointer executor = Make(2);
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
    const ExecutorPointer executor = Make(1);
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
    const ExecutorPointer executor = Make(1);
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
        const ExecutorPointer executor = Make(1);
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

TEST(Executor, TerminationRequested_RunsWhatIsQueuedAndRefusesTheRest)
{
    for (const bool isPaused : {false, true}) {
        const ExecutorPointer executor = Make(2);
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
    const ExecutorPointer executor = Make(2);
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
    const ExecutorPointer executor = Make(2);
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
    const ExecutorPointer executor = Make(2);
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

TEST(Executor, CurrentThreadIsExecutorThread_OnlyOnItsOwnThreads)
{
    const ExecutorPointer executor = Make(2);
    const ExecutorPointer other = Make(1);
    BlockingList<bool> answers;
    executor->QueueFunction([&] { answers.Add(executor->CurrentThreadIsExecutorThread()); }, 0);
    executor->QueueFunction([&] { answers.Add(!other->CurrentThreadIsExecutorThread()); }, 0);
    EXPECT_EQ((std::vector<bool>{true, true}), answers.WaitFor(2));
    EXPECT_FALSE(executor->CurrentThreadIsExecutorThread());
    Stop(*executor);
    Stop(*other);
}

TEST(Executor, ThreadCount_IsAsAskedOrChosenByTheExecutor)
{
    EXPECT_EQ(1u, Make(1)->GetThreadCount());
    EXPECT_EQ(7u, Make(7)->GetThreadCount());
    EXPECT_LE(2u, Make(-1)->GetThreadCount()) << "a multi-threaded executor has more than one on any machine";
    EXPECT_EQ(Make(-1)->GetThreadCount(), Make(0)->GetThreadCount());
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

TEST(Executor, LastReferenceDropped_RunsWhatIsQueuedAndEndsTheThreads)
{
    const unsigned int before = ORLTest::CountProcessThreads();
    std::atomic<int> done{0};
    {
        const ExecutorPointer executor = Make(3);
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
        ExecutorPointer executor = Make(2);
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

namespace {

std::atomic<int> sThreadsAllowed{0};

bool StartSomeThreads(void (*inFunction)(void*), void* inArgument, Platform::ThreadHandle& outThread)
{
    return sThreadsAllowed-- > 0 && Platform::StartThread_Impl(inFunction, inArgument, outThread);
}

} // namespace

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

TEST(Executor, RandomLives_RunEachAcceptedFunctionOnceAndNoOther)
{
    for (unsigned int seed = 1; seed <= 200; ++seed) {
        unsigned int state = seed;
        const auto next = [&state](unsigned int inBelow) {
            state = state * 1664525u + 1013904223u;
            return (state >> 16) % inBelow;
        };
        constexpr std::size_t kFunctions = 200;
        ExecutorPointer executor = Make(1 + static_cast<int>(next(4)));
        std::vector<std::atomic<int>> runs(kFunctions);
        std::vector<std::atomic<bool>> isAccepted(kFunctions);
        std::atomic<std::size_t> nextIndex{0};
        const auto queueSome = [&](unsigned int inCount) {
            for (unsigned int i = 0; i < inCount; ++i) {
                const std::size_t index = nextIndex++;
                if (index < kFunctions) {
                    isAccepted[index] = executor->QueueFunction([&runs, index] { ++runs[index]; }, 0);
                }
            }
        };
        std::thread producer([&] { queueSome(80); });
        std::thread other([&] {
            for (int i = 0; i < 5; ++i) {
                executor->Pause();
                queueSome(4);
                executor->Resume();
            }
        });
        queueSome(next(100));
        if (next(2) == 0) {
            executor->RequestTermination();
        }
        queueSome(next(20));
        producer.join();
        other.join();
        Stop(*executor);
        for (std::size_t i = 0; i < kFunctions; ++i) {
            ASSERT_EQ(isAccepted[i] ? 1 : 0, runs[i]) << "function " << i << ", seed " << seed;
        }
    }
}
