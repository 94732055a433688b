#include <ORLSharedThreadedWorkQueue.h>

#include <CheckRecorder.h>
#include <CurrentThread.h>
#include <ORLWaitableGate.h>
#include <QueueRequests.h>
#include <Signals.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::BlockingList;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::MakeRequest;

namespace {

using QueueRef = SharedThreadedWorkQueue::QueueRef;
using Request = ThreadedWorkQueue::Request;

// Destroys the instance before and after each test.
class SharedQueues : public testing::Test
{
protected:
    void SetUp() override { SharedThreadedWorkQueue::Shutdown(); }
    void TearDown() override { SharedThreadedWorkQueue::Shutdown(); }

    SharedThreadedWorkQueue& Shared() { return *SharedThreadedWorkQueue::Instance(); }
};

// Each request waits for all others, so all requests end only if each has its own thread.
void ExpectToRunAtOnce(ThreadedWorkQueue& ioQueue, std::size_t inRequests)
{
    const auto all = std::make_shared<ORLTest::Barrier>(inRequests + 1);
    for (std::size_t i = 0; i < inRequests; ++i) {
        ASSERT_TRUE(ioQueue.QueueRequest(MakeRequest([all] { all->Join(); })));
    }
    all->Join();
}

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
    EXPECT_EQ(Shared().RetrieveOrCreateSingleThreaded(3).GetPtr(), Shared().RetrieveOrCreateSingleThreaded(3).GetPtr());
}

TEST_F(SharedQueues, MultiAndSingleThreaded_AreTwoQueues)
{
    const QueueRef multi = Shared().RetrieveOrCreate(3);
    const QueueRef single = Shared().RetrieveOrCreateSingleThreaded(3);
    EXPECT_NE(multi.GetPtr(), single.GetPtr());
    EXPECT_EQ(1u, single->GetNumberOfThreads());
    const QueueRef executorChooses(new ThreadedWorkQueue);
    executorChooses->Initialize(3, -1, ConstString("Own"), ConstString("Test"));
    EXPECT_EQ(executorChooses->GetNumberOfThreads(), multi->GetNumberOfThreads());
    executorChooses->Stop();
    ExpectToRunAtOnce(*multi.GetPtr(), multi->GetNumberOfThreads());
}

TEST_F(SharedQueues, Threads_AreNamedByTheLibraryAndTheirKind)
{
    const auto nameIn = [](const QueueRef& inQueue) {
        BlockingList<std::string> name;
        inQueue->QueueRequest(MakeRequest([&name] { name.Add(ORLTest::SystemNameOfThisThread()); }));
        return name.WaitFor(1)[0];
    };
    const auto kept = [](const std::string& inName) { return inName.substr(0, ORLTest::kMinThreadNameBytes); };
    EXPECT_EQ(kept("ORL::Foundation: Multi-threaded ORL::SharedThreadedWorkQueue"),
              nameIn(Shared().RetrieveOrCreate(3)));
    EXPECT_EQ(kept("ORL::Foundation: Single-threaded ORL::SharedThreadedWorkQueue"),
              nameIn(Shared().RetrieveOrCreateSingleThreaded(3)));
    SharedThreadedWorkQueue::Shutdown(); // the thread that adds the name may still be inside Record
}

// Linux truncates thread names before the queue's kind; the report of a request that throws contains the whole name.
TEST_F(SharedQueues, ReportOfARequestThatThrows_HasTheWholeNameOfTheThread)
{
    const auto reportOf = [](const QueueRef& inQueue) {
        const CheckRecorder recorder;
        inQueue->QueueRequest(MakeRequest([] { throw std::runtime_error("reason"); }));
        SharedThreadedWorkQueue::Shutdown();
        const std::vector<CheckReport> reports = recorder.Reports();
        EXPECT_EQ(1u, reports.size());
        return reports.empty() ? std::string() : reports[0].mExpression;
    };
    const std::string named = "\"ORL::Foundation: ";
    EXPECT_NE(std::string::npos, reportOf(Shared().RetrieveOrCreate(3))
                                     .find(named + "Multi-threaded ORL::SharedThreadedWorkQueue\" has thrown"));
    EXPECT_NE(std::string::npos, reportOf(Shared().RetrieveOrCreateSingleThreaded(3))
                                     .find(named + "Single-threaded ORL::SharedThreadedWorkQueue\" has thrown"));
}

TEST_F(SharedQueues, Queue_RunsRequests)
{
    WaitableGate gate;
    ASSERT_TRUE(Shared().RetrieveOrCreate(3)->QueueRequest(MakeRequest([&gate] { gate.Open(); })));
    EXPECT_EQ(kSuccess, gate.Wait(-1));
    SharedThreadedWorkQueue::Shutdown(); // the thread that opens a gate may still be inside Open when the wait returns
}

TEST_F(SharedQueues, PriorityOutsideTheRange_IsAKeyOfItsOwn)
{
    EXPECT_NE(Shared().RetrieveOrCreateSingleThreaded(17).GetPtr(),
              Shared().RetrieveOrCreateSingleThreaded(3).GetPtr());
    const QueueRef negative = Shared().RetrieveOrCreateSingleThreaded(-1);
    EXPECT_EQ(negative.GetPtr(), Shared().RetrieveSingleThreaded(-1).GetPtr());
}

TEST_F(SharedQueues, PriorityOutsideTheRange_RunsAtPriorityThree)
{
    BlockingList<int> levels;
    for (const ThreadPriorities::Type outside : {17, -1}) {
        for (const QueueRef& queue :
             {Shared().RetrieveOrCreateSingleThreaded(outside), Shared().RetrieveOrCreate(outside)}) {
            queue->QueueRequest(MakeRequest([&levels] { levels.Add(ORLTest::LevelOfThisThread()); }));
        }
    }
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_EQ(std::vector<int>(4, ORLTest::ExpectedThreadLevel(3)), levels.Get());
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
            ASSERT_NE(nullptr, place);
            ASSERT_EQ(seen[0], place);
        }
        ASSERT_EQ(seen[0], SharedThreadedWorkQueue::Instance())
            << "the one that was published, not one that went again";
    }
    EXPECT_TRUE(Shared().RetrieveOrCreateSingleThreaded(3)->QueueRequest(MakeRequest([] {})));
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
    const auto takesNoMore = [](const QueueRef& inQueue) { return !inQueue->QueueRequest(MakeRequest([] {})); };
    SharedThreadedWorkQueue::Shutdown();
    const QueueRef first = Shared().RetrieveOrCreateSingleThreaded(3);
    EXPECT_FALSE(takesNoMore(first)) << "a shutdown without an instance leaves nothing that spoils the next one";
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_TRUE(takesNoMore(first));
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_FALSE(Shared().RetrieveSingleThreaded(3)) << "the second one has not brought the old queue back";
    const QueueRef second = Shared().RetrieveOrCreateSingleThreaded(3);
    EXPECT_NE(first.GetPtr(), second.GetPtr());
    EXPECT_FALSE(takesNoMore(second));
}

TEST_F(SharedQueues, AfterShutdown_TheInstanceIsNewAndEmpty)
{
    Shared().RetrieveOrCreateSingleThreaded(3);
    Shared().RetrieveOrCreate(3);
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_FALSE(Shared().Retrieve(3));
    EXPECT_FALSE(Shared().RetrieveSingleThreaded(3));
}

// A paused queue runs nothing until its Stop, which runs the queued requests and then joins the threads. The requests
// therefore show the order in which the queues were stopped, which differs from the order in which they were created.
TEST_F(SharedQueues, Shutdown_StopsTheMultiThreadedFirstAndLowerPrioritiesFirst)
{
    BlockingList<std::string> stopped;
    const auto hold = [&stopped](const QueueRef& inQueue, const char* inName) {
        inQueue->Pause();
        ASSERT_TRUE(inQueue->QueueRequest(MakeRequest([&stopped, inName] { stopped.Add(inName); })));
    };
    hold(Shared().RetrieveOrCreateSingleThreaded(4), "single 4");
    hold(Shared().RetrieveOrCreate(2), "multi 2");
    hold(Shared().RetrieveOrCreateSingleThreaded(0), "single 0");
    hold(Shared().RetrieveOrCreate(3), "multi 3");
    hold(Shared().RetrieveOrCreate(-1), "multi -1");
    hold(Shared().RetrieveOrCreateSingleThreaded(3), "single 3");
    EXPECT_EQ(0u, stopped.Count());
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_EQ((std::vector<std::string>{"multi -1", "multi 2", "multi 3", "single 0", "single 3", "single 4"}),
              stopped.Get());
}

TEST_F(SharedQueues, ReferenceKeptAcrossShutdown_IsAStoppedQueue)
{
    WaitableGate gate;
    const QueueRef queue = Shared().RetrieveOrCreateSingleThreaded(3);
    ASSERT_TRUE(queue->QueueRequest(MakeRequest([&gate] { gate.Open(); })));
    SharedThreadedWorkQueue::Shutdown();
    EXPECT_EQ(kSuccess, gate.Wait(0)) << "what was queued has run";
    EXPECT_FALSE(queue->QueueRequest(MakeRequest([&gate] { gate.Open(); })));
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
}
