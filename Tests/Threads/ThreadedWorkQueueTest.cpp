#include <ORLThreadedWorkQueue.h>

#include <CheckRecorder.h>
#include <CurrentThread.h>
#include <ExpectReport.h>
#include <ProcessThreads.h>
#include <QueueRequests.h>
#include <Signals.h>
#include <tvxcore/Guid.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::Barrier;
using ORLTest::BlockingList;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::Event;
using ORLTest::ExpectReport;
using ORLTest::MakeRequest;

namespace {

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using Request = ThreadedWorkQueue::Request;

Queue MakeQueue(int inPolicy, ThreadPriorities::Type inPriority = ThreadPriorities::kNormal)
{
    const Queue queue(new ThreadedWorkQueue);
    EXPECT_TRUE(queue->Initialize(inPriority, inPolicy, ConstString("Thread"), ConstString("Module")));
    return queue;
}

// Returns when the single thread has run everything queued so far.
void Drain(const Queue& inQueue)
{
    Event done;
    ASSERT_TRUE(inQueue->QueueRequest(MakeRequest([&done] { done.Set(); })));
    done.Wait();
}

constexpr char kStoppedTwice[] = "Somebody called stop on this Queue more than once (or without calling Initialize), "
                                 "which is bad.\r\n";
constexpr char kNotStopped[] = "Stop() was not called on a ThreadedWorkQueue.\r\n";

void ExpectAssert(const CheckReport& inReport, const char* inExpression, const char* inMessage, const char* inFunction)
{
    ExpectReport(inReport).Kind(CheckReport::kAssert).Expression(inExpression).Message(inMessage).Function(inFunction);
}

} // namespace

TEST(ThreadedWorkQueue, BeforeInitialize_RefusesAndDoesNothingAndReportsNothing)
{
    const CheckRecorder recorder;
    {
        const Queue queue(new ThreadedWorkQueue);
        const Request request = MakeRequest([] { ADD_FAILURE() << "there is no thread to run this"; });
        EXPECT_FALSE(queue->QueueRequest(request));
        EXPECT_FALSE(queue->SetIdleProcess(request, 10));
        queue->ClearIdleProcess();
        EXPECT_EQ(0u, queue->GetNumberOfThreads());
        EXPECT_FALSE(queue->CurrentThreadIsQueueThread());
        queue->Pause();
        queue->BlockWhilePaused();
        queue->Resume();
        queue->Stop();
        queue->Stop();
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ThreadedWorkQueue, NeverInitializedAndDestroyed_ReportsNothing)
{
    const CheckRecorder recorder;
    const Queue queue(new ThreadedWorkQueue);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ThreadedWorkQueue, QueryInterface_AnswersForItselfAndTheRootOnly)
{
    const Queue queue(new ThreadedWorkQueue);
    struct Row
    {
        int mLine;
        Guid mInterfaceID;
        bool mIsAnswered;
    };
    const Row rows[] = {
        {__LINE__, Guid(0x424584A420974874u, 0x998149164AB27293u), true},  // {20974874-84a4-4245-9372-b24a16498199}
        {__LINE__, Guid(0x4F33C5DF4F9CB3F7u, 0xB93F9CDF4C78A5B5u), true},  // ORLUnknown
        {__LINE__, Guid(0x42E70EE71DF08FEDu, 0xE09C394DB38CF492u), false}, // IThreadedQueueRequest
        {__LINE__, Guid(0x424584A420974874u, 0u), false},
    };
    for (const Row& row : rows) {
        void* found = &found;
        const Result result = queue->QueryInterface(row.mInterfaceID, &found);
        EXPECT_EQ(row.mIsAnswered ? kSuccess : kNoSuchInterface, result) << "row at line " << row.mLine;
        EXPECT_EQ(row.mIsAnswered ? queue.GetPtr() : nullptr, found) << "row at line " << row.mLine;
        if (row.mIsAnswered) {
            queue->Release();
        }
    }
}

TEST(ThreadedWorkQueue, Requests_RunInTheirOrder)
{
    const Queue queue = MakeQueue(0);
    std::vector<int> order;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(queue->QueueRequest(MakeRequest([&order, i] { order.push_back(i); })));
    }
    queue->Stop();
    ASSERT_EQ(100u, order.size());
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(ThreadedWorkQueue, Policy_GivesTheNumberOfThreads)
{
    const CheckRecorder recorder;
    for (const int policy : {0, 1, 3}) {
        const Queue queue = MakeQueue(policy);
        EXPECT_EQ(policy == 0 ? 1u : static_cast<unsigned int>(policy), queue->GetNumberOfThreads());
        queue->Stop();
    }
    const Queue chosen = MakeQueue(-1);
    EXPECT_LE(2u, chosen->GetNumberOfThreads());
    chosen->Stop();
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ThreadedWorkQueue, PolicyBelowMinusOne_AssertsAndGivesOneThread)
{
    const CheckRecorder recorder;
    const Queue queue = MakeQueue(-2);
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
    queue->Stop();
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectAssert(reports[0], "inThreadAllocationPolicy > 0", "",
                 "ORL::`anonymous-namespace'::ConvertThreadAllocationPolicy");
}

TEST(ThreadedWorkQueue, Priority_ReachesTheThreadsAndEveryOtherNumberIsThree)
{
    struct Row
    {
        int mLine;
        ThreadPriorities::Type mPriority;
        int mExpected;
    };
    const Row rows[] = {
        {__LINE__, 0, 0}, {__LINE__, 1, 1}, {__LINE__, 2, 2},  {__LINE__, 3, 3},    {__LINE__, 4, 4},
        {__LINE__, 5, 5}, {__LINE__, 6, 3}, {__LINE__, -1, 3}, {__LINE__, 1000, 3},
    };
    for (const Row& row : rows) {
        const Queue queue = MakeQueue(0, row.mPriority);
        int level = -100;
        queue->QueueRequest(MakeRequest([&level] { level = ORLTest::LevelOfThisThread(); }));
        queue->Stop();
        EXPECT_EQ(ORLTest::ExpectedThreadLevel(row.mExpected), level) << "row at line " << row.mLine;
    }
}

TEST(ThreadedWorkQueue, Threads_AreNamedModuleFirst)
{
    const Queue queue(new ThreadedWorkQueue);
    // Three UTF-8 bytes per character: the kernel's byte limit falls inside a character.
    EXPECT_TRUE(queue->Initialize(3, 0, ConstString("\u4e2d\u6587\u5b57\u7b26\u4e32"), ConstString("AB")));
    std::string name;
    queue->QueueRequest(MakeRequest([&name] { name = ORLTest::SystemNameOfThisThread(); }));
    queue->Stop();
    const std::string full = "AB: \u4e2d\u6587\u5b57\u7b26\u4e32";
    EXPECT_EQ(ORLTest::kMinThreadNameBytes < full.size() ? "AB: \u4e2d\u6587\u5b57" : full, name);
}

TEST(ThreadedWorkQueue, EmptyNames_BreakTheContractInTheirOrderAndTheQueueStarts)
{
    const CheckRecorder recorder;
    const Queue queue(new ThreadedWorkQueue);
    EXPECT_TRUE(queue->Initialize(3, 0, ConstString(), ConstString()));
    Drain(queue);
    queue->Stop();
    const std::vector<CheckReport> contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(2u, contracts.size());
    ExpectReport(contracts[0]).Expression("!inThreadName.empty()");
    ExpectReport(contracts[1]).Expression("!inModuleName.empty()");
    const std::vector<CheckReport> errors = recorder.Reports(CheckReport::kError);
    ASSERT_EQ(2u, errors.size());
    ExpectReport(errors[0]).Line(25);
    ExpectReport(errors[1]).Line(25);
}

TEST(ThreadedWorkQueue, EmptyNameWithAManagerThatThrows_LeavesTheQueueAsItWas)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    const Queue queue(new ThreadedWorkQueue);
    EXPECT_THROW(queue->Initialize(3, 0, ConstString("Thread"), ConstString()), CheckRecorder::ContractError);
    EXPECT_EQ(0u, queue->GetNumberOfThreads());
}

TEST(ThreadedWorkQueue, InitializedTwice_RunsWhatTheOldThreadsHadAndGoesOnWithNewOnes)
{
    const CheckRecorder recorder;
    const unsigned int before = ORLTest::CountProcessThreads();
    const Queue queue = MakeQueue(3);
    std::atomic<int> done{0};
    for (int i = 0; i < 50; ++i) {
        queue->QueueRequest(MakeRequest([&done] { ++done; }));
    }
    EXPECT_TRUE(queue->Initialize(3, 1, ConstString("Second"), ConstString("Module")));
    EXPECT_EQ(50, done);
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
    Drain(queue);
    queue->Stop();
    ORLTest::WaitForProcessThreads(before);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ThreadedWorkQueue, RequestThatItsCallerDropsAtOnce_LivesUntilProcessHasReturned)
{
    struct DestructionReporter : UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
    {
        DestructionReporter(Event& inMayEnd, std::atomic<bool>& inIsGone, bool& inWasGone)
            : mMayEnd(inMayEnd), mIsGone(inIsGone), mWasGone(inWasGone)
        {
        }
        ~DestructionReporter() override { mIsGone = true; }
        void Process() override
        {
            mMayEnd.Wait();
            mWasGone = mIsGone;
        }
        Event& mMayEnd;
        std::atomic<bool>& mIsGone;
        bool& mWasGone;
    };
    const Queue queue = MakeQueue(0);
    Event mayEnd;
    std::atomic<bool> isGone{false};
    bool wasGone = true;
    queue->QueueRequest(Request(new DestructionReporter(mayEnd, isGone, wasGone)));
    EXPECT_FALSE(isGone);
    mayEnd.Set();
    Drain(queue);
    EXPECT_FALSE(wasGone);
    EXPECT_TRUE(isGone) << "and no longer";
    queue->Stop();
}

TEST(ThreadedWorkQueue, RefusedRequest_IsLetGo)
{
    auto life = std::make_shared<int>();
    const Queue queue = MakeQueue(0);
    queue->Stop();
    EXPECT_FALSE(queue->QueueRequest(MakeRequest([life] {})));
    EXPECT_EQ(1, life.use_count());
    EXPECT_FALSE(Queue(new ThreadedWorkQueue)->QueueRequest(MakeRequest([life] {})));
    EXPECT_EQ(1, life.use_count());
}

TEST(ThreadedWorkQueue, OneRequestQueuedManyTimes_RunsEachTimeAndLosesNoCount)
{
    auto life = std::make_shared<int>();
    std::atomic<int> runs{0};
    const Queue queue = MakeQueue(3);
    {
        const Request request = MakeRequest([life, &runs] { ++runs; });
        for (int i = 0; i < 5000; ++i) {
            queue->QueueRequest(request);
        }
    }
    queue->Stop();
    EXPECT_EQ(5000, runs);
    EXPECT_EQ(1, life.use_count());
}

TEST(ThreadedWorkQueue, RequestThatThrows_IsReportedAndLetGoAndItsThreadGoesOn)
{
    const CheckRecorder recorder;
    auto life = std::make_shared<int>();
    const Queue queue = MakeQueue(0);
    queue->QueueRequest(MakeRequest([life] { throw std::runtime_error("reason"); }));
    Drain(queue);
    EXPECT_EQ(1, life.use_count());
    queue->Stop();
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Level(1);
    EXPECT_NE(std::string::npos, reports[0].mExpression.find("\"Module: Thread\" has thrown: reason"));
}

TEST(ThreadedWorkQueue, NullRequest_IsReportedByTheThreadThatFindsIt)
{
    const CheckRecorder recorder;
    const Queue queue = MakeQueue(0);
    EXPECT_TRUE(queue->QueueRequest(Request()));
    Drain(queue);
    queue->Stop();
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(2u, reports.size());
    ExpectReport(reports[0]).Expression("mIPtr != NULL");
    EXPECT_NE(std::string::npos, reports[1].mExpression.find("A NULL interface pointer has been dereferenced."));
}

TEST(ThreadedWorkQueue, CurrentThreadIsQueueThread_OnItsOwnThreadsOnlyAndAlsoAfterStop)
{
    const Queue queue = MakeQueue(2);
    const Queue other = MakeQueue(0);
    bool isOwn = false;
    bool isOther = true;
    queue->QueueRequest(MakeRequest([&] {
        isOwn = queue->CurrentThreadIsQueueThread();
        isOther = other->CurrentThreadIsQueueThread();
    }));
    queue->Stop();
    other->Stop();
    EXPECT_TRUE(isOwn);
    EXPECT_FALSE(isOther);
    EXPECT_FALSE(queue->CurrentThreadIsQueueThread());
    EXPECT_EQ(2u, queue->GetNumberOfThreads());
}

TEST(ThreadedWorkQueue, Paused_StartsNothingUntilResumed)
{
    const Queue queue = MakeQueue(2);
    BlockingList<int> runs;
    queue->Pause();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(queue->QueueRequest(MakeRequest([&runs] { runs.Add(0); })));
    }
    EXPECT_EQ(0u, runs.Count());
    queue->Resume();
    queue->BlockWhilePaused();
    runs.WaitFor(5);
    queue->Stop();
}

TEST(ThreadedWorkQueue, Stop_RunsWhatIsQueuedAndRefusesTheRest)
{
    const CheckRecorder recorder;
    const Queue queue = MakeQueue(2);
    std::atomic<int> runs{0};
    queue->Pause();
    for (int i = 0; i < 50; ++i) {
        queue->QueueRequest(MakeRequest([&runs] { ++runs; }));
    }
    queue->Stop();
    EXPECT_EQ(50, runs);
    EXPECT_FALSE(queue->QueueRequest(MakeRequest([] { ADD_FAILURE() << "the queue has stopped"; })));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ThreadedWorkQueue, StoppedTwice_ReportsTheAssertion)
{
    const CheckRecorder recorder;
    const Queue queue = MakeQueue(0);
    queue->Stop();
    queue->Stop();
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectAssert(reports[0], "!mImpl->mExecutor->IsTerminated()", kStoppedTwice, "ORL::ThreadedWorkQueue::Stop");
}

// The first Stop runs on the queue's own thread and does not wait. The second Stop must end the queue. The second Stop
// is called while a request that was queued after the first Stop is running. That request runs until the second Stop is
// reported, and then long enough for a Stop that does not wait to return.
TEST(ThreadedWorkQueue, StoppedOnItsOwnThread_ReturnsAtOnceAndTheSecondStopWaitsForWhatIsQueued)
{
    const CheckRecorder recorder;
    const Queue queue = MakeQueue(0);
    Event isQueued;
    Event stopped;
    std::atomic<bool> hasReturned{false};
    bool hasReturnedTooEarly = true;
    Event finished;
    queue->QueueRequest(MakeRequest([&] {
        isQueued.Wait();
        queue->Stop();
        stopped.Set();
    }));
    queue->QueueRequest(MakeRequest([&] {
        while (recorder.Reports().empty()) {
            std::this_thread::yield();
        }
        for (int turn = 0; turn < 10000 && !hasReturned; ++turn) {
            std::this_thread::yield();
        }
        hasReturnedTooEarly = hasReturned;
        finished.Set();
    }));
    isQueued.Set();
    stopped.Wait();
    queue->Stop();
    hasReturned = true;
    finished.Wait();
    EXPECT_FALSE(hasReturnedTooEarly);
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectAssert(reports[0], "!mImpl->mExecutor->IsTerminated()", kStoppedTwice, "ORL::ThreadedWorkQueue::Stop");
}

TEST(ThreadedWorkQueue, DestroyedWhileRunning_ReportsTheAssertionAndRunsWhatIsQueued)
{
    const CheckRecorder recorder;
    const unsigned int before = ORLTest::CountProcessThreads();
    std::atomic<int> runs{0};
    {
        const Queue queue = MakeQueue(2);
        for (int i = 0; i < 50; ++i) {
            queue->QueueRequest(MakeRequest([&runs] { ++runs; }));
        }
    }
    EXPECT_EQ(50, runs);
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectAssert(reports[0], "mImpl->mExecutor->IsTerminated()", kNotStopped,
                 "ORL::ThreadedWorkQueue::~ThreadedWorkQueue");
    ORLTest::WaitForProcessThreads(before);
}

// An ignored site stays ignored until the process ends, so each of these tests has its own process.
using ThreadedWorkQueueDeathTest = testing::Test;

TEST_F(ThreadedWorkQueueDeathTest, SecondStopIgnoredForGood_IsNotReportedAgain)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            CheckRecorder recorder;
            recorder.mIgnoreForGood = true;
            const Queue queue = MakeQueue(0);
            queue->Stop();
            queue->Stop();
            queue->Stop();
            std::_Exit(recorder.Reports().size() == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ThreadedWorkQueueDeathTest, MissingStopIgnoredForGood_IsNotReportedAgain)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            CheckRecorder recorder;
            recorder.mIgnoreForGood = true;
            MakeQueue(0);
            MakeQueue(0);
            std::_Exit(recorder.Reports().size() == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ThreadedWorkQueue, RequestsOfSeveralThreads_AllRunOnce)
{
    const Queue queue = MakeQueue(3);
    std::atomic<int> runs{0};
    std::vector<std::thread> producers;
    for (int i = 0; i < 4; ++i) {
        producers.emplace_back([&] {
            for (int k = 0; k < 1000; ++k) {
                queue->QueueRequest(MakeRequest([&runs] { ++runs; }));
            }
        });
    }
    for (std::thread& producer : producers) {
        producer.join();
    }
    queue->Stop();
    EXPECT_EQ(4000, runs);
}
