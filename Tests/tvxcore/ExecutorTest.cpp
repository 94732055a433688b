// Tests how an executor runs queued functions: their order, and that each runs once.
#include "ExecutorSupport.h"

#include <CheckRecorder.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using namespace ORLTest;

TEST(Executor, OneThread_RunsFunctionsInTheirOrder)
{
    const ExecutorPointer executor = MakeExecutor(1);
    std::vector<int> order;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(executor->QueueFunction([&order, i] { order.push_back(i); }, 0));
    }
    Stop(*executor);
    std::vector<int> expected(1000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(expected, order);
}

TEST(Executor, ThreeThreads_StartFunctionsInTheirOrder)
{
    constexpr int kThreads = 3;
    constexpr int kFunctions = 30;
    const ExecutorPointer executor = MakeExecutor(kThreads);
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
        const ExecutorPointer executor = MakeExecutor(static_cast<int>(threads));
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
        const ExecutorPointer executor = MakeExecutor(1 + round % 4);
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
    const ExecutorPointer executor = MakeExecutor(3);
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
        const ExecutorPointer executor = MakeExecutor(threads);
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
    const ExecutorPointer executor = MakeExecutor(1);
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
    const ExecutorPointer executor = MakeExecutor(1);
    EXPECT_TRUE(executor->QueueFunction(Function(), 0));
    Stop(*executor);
    EXPECT_TRUE(recorder.Reports().empty());
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
        ExecutorPointer executor = MakeExecutor(1 + static_cast<int>(next(4)));
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
