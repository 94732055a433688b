#include <ORLQueueFunction.h>
#include <ORLThreadedWorkQueueFlush.h>

#include <CheckRecorder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ORL;

namespace {

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;

/// A running queue, stopped at the end of the scope.
struct RunningQueue
{
    explicit RunningQueue(int inThreads) : mQueue(MakeInterfaceRef<ThreadedWorkQueue>())
    {
        mQueue->Initialize(ThreadPriorities::kNormal, inThreads, ConstString("Functions"), ConstString("Test"));
    }
    ~RunningQueue() { mQueue->Stop(); }
    RunningQueue(const RunningQueue&) = delete;
    RunningQueue& operator=(const RunningQueue&) = delete;

    const Queue mQueue;
};

std::atomic<int> sCalls{0};

void CountCall()
{
    ++sCalls;
}

/// Counts its own copies and destructions.
class Counted
{
public:
    Counted() { ++sLiving; }
    Counted(const Counted&)
    {
        ++sLiving;
        ++sCopies;
    }
    Counted(Counted&&) noexcept { ++sLiving; }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --sLiving; }
    void operator()() const {}

    static std::atomic<int> sLiving;
    static std::atomic<int> sCopies;
};

std::atomic<int> Counted::sLiving{0};
std::atomic<int> Counted::sCopies{0};

void ExpectRefused(std::future<void> inFuture)
{
    try {
        inFuture.get();
        ADD_FAILURE() << "the function cannot have run";
    } catch (const std::future_error& error) {
        EXPECT_EQ(std::make_error_code(std::future_errc::broken_promise), error.code());
    }
}

} // namespace

TEST(MakeFunctionRequest, EveryKindOfFunction_IsCalledOnceForEachProcess)
{
    sCalls = 0;
    int calls = 0;
    const ThreadedWorkQueue::Request requests[] = {
        MakeFunctionRequest(&CountCall),
        MakeFunctionRequest(CountCall),
        MakeFunctionRequest([&calls] { ++calls; }),
        MakeFunctionRequest([&calls]() mutable { return ++calls; }),
        MakeFunctionRequest([&calls, owned = std::make_unique<int>(1)] { calls += *owned; }),
        MakeFunctionRequest(std::function<void()>([&calls] { ++calls; })),
    };
    for (const ThreadedWorkQueue::Request& request : requests) {
        request->Process();
        request->Process();
    }
    EXPECT_EQ(4, sCalls);
    EXPECT_EQ(8, calls);
}

TEST(MakeFunctionRequest, ResultThatMustNotBeDiscarded_IsDiscardedWithoutAWarning)
{
    struct Counter
    {
        [[nodiscard]] int operator()() const { return ++sCalls; }
    };
    sCalls = 0;
    MakeFunctionRequest(Counter())->Process();
    EXPECT_EQ(1, sCalls);
}

TEST(MakeFunctionRequest, Function_IsCopiedOnceAndDestroyedWithTheLastReference)
{
    Counted::sCopies = 0;
    {
        const Counted function;
        ThreadedWorkQueue::Request request = MakeFunctionRequest(function);
        EXPECT_EQ(1, Counted::sCopies);
        EXPECT_EQ(2, Counted::sLiving);
        const ThreadedWorkQueue::Request second = request;
        request = ThreadedWorkQueue::Request();
        EXPECT_EQ(2, Counted::sLiving);
    }
    EXPECT_EQ(0, Counted::sLiving);
    MakeFunctionRequest(Counted());
    EXPECT_EQ(1, Counted::sCopies) << "a temporary is moved";
}

TEST(MakeFunctionRequest, QueuedInManyOnSeveralThreads_AllRun)
{
    std::atomic<int> calls{0};
    {
        const RunningQueue running(3);
        for (int i = 0; i < 1000; ++i) {
            ASSERT_TRUE(running.mQueue->QueueRequest(MakeFunctionRequest([&calls] { ++calls; })));
        }
    }
    EXPECT_EQ(1000, calls);
}

TEST(QueueFunction, Result_ComesThroughTheFuture)
{
    const RunningQueue running(2);
    const std::thread::id self = std::this_thread::get_id();
    EXPECT_EQ(42, QueueFunction(running.mQueue, [] { return 42; }).get());
    EXPECT_NE(self, QueueFunction(running.mQueue, [] { return std::this_thread::get_id(); }).get());
    auto text = QueueFunction(running.mQueue, [] { return std::make_unique<std::string>("moved"); });
    EXPECT_EQ("moved", *text.get());
    int number = 1;
    std::future<int&> reference = QueueFunction(running.mQueue, [&number]() -> int& { return number; });
    reference.get() = 2;
    EXPECT_EQ(2, number);
    std::future<void> nothing = QueueFunction(running.mQueue, [&number] { number = 3; });
    nothing.wait();
    EXPECT_EQ(3, number);
}

TEST(QueueFunction, Exception_ComesThroughTheFutureAndIsNotReported)
{
    ORLTest::CheckRecorder recorder;
    const RunningQueue running(1);
    std::future<int> failed = QueueFunction(running.mQueue, []() -> int { throw std::runtime_error("the reason"); });
    try {
        failed.get();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("the reason", error.what());
    }
    EXPECT_EQ(1, QueueFunction(running.mQueue, [] { return 1; }).get()) << "the thread continues";
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(QueueFunction, Function_IsDestroyedBeforeItsKeptFutureIsReady)
{
    const RunningQueue running(1);
    for (int round = 0; round < 200; ++round) {
        const std::future<void> kept = QueueFunction(running.mQueue, Counted());
        kept.wait();
        ASSERT_EQ(0, Counted::sLiving) << "in round " << round;
        const auto failed =
            QueueFunction(running.mQueue, [captured = Counted()] { throw std::runtime_error("reason"); });
        failed.wait();
        ASSERT_EQ(0, Counted::sLiving) << "in round " << round << ", after an exception";
    }
}

TEST(QueueFunction, NobodyWaits_StillRuns)
{
    sCalls = 0;
    {
        const RunningQueue running(1);
        QueueFunction(running.mQueue, &CountCall);
    }
    EXPECT_EQ(1, sCalls);
}

TEST(QueueFunction, RefusedByTheQueue_BreaksThePromise)
{
    const Queue queue = MakeInterfaceRef<ThreadedWorkQueue>();
    ExpectRefused(QueueFunction(queue, [] { ADD_FAILURE() << "there is no thread to run this"; }));
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Functions"), ConstString("Test"));
    queue->Stop();
    ExpectRefused(QueueFunction(queue, [] { ADD_FAILURE() << "the queue is stopped"; }));
}

TEST(QueueFunction, NullQueue_ThrowsAndDestroysTheFunction)
{
    ORLTest::CheckRecorder recorder;
    EXPECT_THROW(QueueFunction(Queue(), Counted()), NullInterfaceException);
    EXPECT_EQ(0, Counted::sLiving);
}

TEST(QueueFunction, FromManyThreads_EachGetsItsOwnResult)
{
    const RunningQueue running(3);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&running, &wrong, thread] {
            for (int i = 0; i < 500; ++i) {
                const int expected = thread * 1000 + i;
                wrong += QueueFunction(running.mQueue, [expected] { return expected; }).get() == expected ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
}

TEST(FlushQueue, RequestsQueuedBefore_HaveFinished)
{
    const RunningQueue running(4);
    for (int round = 1; round <= 20; ++round) {
        std::atomic<int> calls{0};
        for (int i = 0; i < 50; ++i) {
            running.mQueue->QueueRequest(MakeFunctionRequest([&calls] { ++calls; }));
        }
        ThreadedWorkQueueFlush::FlushQueue(running.mQueue);
        EXPECT_EQ(50, calls);
    }
}

TEST(FlushQueue, NullQueue_IsReportedAndReturns)
{
    ORLTest::CheckRecorder recorder;
    ThreadedWorkQueueFlush::FlushQueue(Queue());
    EXPECT_EQ(1u, recorder.Reports().size());
}
