#include <ORLFoundation.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Foundation/CountedLifecycle.h>
#include <ProcessRunner.h>
#include <QueueRequests.h>
#include <TempFolder.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <deque>
#include <locale>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::MakeRequest;
using ORLTest::ProcessResult;
using ORLTest::RunBesideThisProgram;
using ORLTest::TempFolder;
using QueueRef = SharedThreadedWorkQueue::QueueRef;

namespace {

void ExpectHostOutput(const char* inMode, const std::string& inOutput, const char* inProgram = "lifecycle_host")
{
    const ProcessResult result = RunBesideThisProgram(inProgram, {inMode});
    EXPECT_EQ(0, result.mExitCode) << inMode << ": " << result.mErrors;
    EXPECT_EQ(inOutput, result.mOutput) << inMode;
}

// Returns whether the queue accepted a request and ran it.
bool Runs(ThreadedWorkQueue& ioQueue)
{
    // Never destroyed while threads run: a queue's thread may still be inside Open when the wait returns.
    static std::deque<WaitableGate> sGates;
    WaitableGate& gate = sGates.emplace_back();
    const bool isTaken = ioQueue.QueueRequest(MakeRequest([&gate] { gate.Open(); }));
    return isTaken && gate.Wait(-1) == kSuccess;
}

void KeepBytesRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                   void* outBytesRead, void*, void*, int)
{
    *static_cast<unsigned int*>(outBytesRead) = inBytesRead;
}

// Reads one page. Returns 0 if the file cannot be opened.
unsigned int BytesReadOf(const UTF16String& inPath)
{
    alignas(4096) static char sBuffer[4096];
    unsigned int bytesRead = 0;
    AsyncFileReader reader;
    if (AsyncFileReader::Open(inPath, reader) == kSuccess) {
        reader.QueueReadRequest(0, sizeof(sBuffer), sBuffer, &KeepBytesRead, &bytesRead, nullptr, nullptr);
        reader.WaitForPendingReads();
    }
    return bytesRead;
}

/// Absorbs the report of the thread record check, which fails at every restart; other tests cover that check.
class FoundationTest : public ::testing::Test
{
protected:
    CheckRecorder mRecorder;
};

} // namespace

namespace {

const auto kTracedCategory = reinterpret_cast<const unsigned char*>("ORLFoundation::TVXErrorManager");

/// Determines which services run, by using them as a host does.
class Services
{
public:
    explicit Services(const TempFolder& inFolder) : mClip(inFolder.Path(u"clip")) {}

    void MakeAQueue()
    {
        mQueue = SharedThreadedWorkQueue::Instance()->RetrieveOrCreateSingleThreaded(ThreadPriorities::kNormal);
    }

    std::string Running() const
    {
        const bool hasRecord = ThreadManager::GetCurrentThreadInfo()->GetThreadName() != ConstString("Unnamed Thread");
        std::string running;
        running += std::locale() == std::locale::classic() ? "locale " : "";
        running += hasRecord ? "thread " : "";
        running += MemoryRecycler::Instance() ? "recycler " : "";
        running += BytesReadOf(mClip) != 0 ? "reads " : "";
        running += mQueue && Runs(*mQueue.GetPtr()) ? "queue " : "";
        running += tvxcore::debug::TraceEnabled(kTracedCategory, 1, true) ? "trace " : "";
        return running;
    }

    /// Returns the running services after each step of a sequence.
    std::vector<std::string> After(const LifecycleStep* inSteps, std::size_t inCount) const
    {
        std::vector<std::string> running;
        for (std::size_t i = 0; i < inCount; ++i) {
            inSteps[i].mRun();
            running.push_back(Running());
        }
        return running;
    }

private:
    const UTF16String mClip;
    QueueRef mQueue;
};

class Apostrophes : public std::numpunct<char>
{
    char do_thousands_sep() const override { return '\''; }
};

} // namespace

// Runs the steps one by one and checks the effect of each step. The two steps for exceptions are empty, so they have no
// visible effect.
TEST_F(FoundationTest, StartAndStop_DoTheirWorkInTheirFixedOrders)
{
    const TempFolder folder;
    folder.MakeFile("clip", std::string(4096, 'x'));
    Services services(folder);
    const CountedLifecycle& lifecycle = FoundationLifecycle();
    std::locale::global(std::locale(std::locale::classic(), new Apostrophes));
    EXPECT_EQ("", services.Running());
    EXPECT_EQ((std::vector<std::string>{"", "locale ", "locale thread ", "locale thread recycler ",
                                        "locale thread recycler reads "}),
              services.After(lifecycle.mStart, lifecycle.mStartCount));
    EXPECT_EQ(&Exception::Initialize, lifecycle.mStart[0].mRun);
    services.MakeAQueue();
    tvxcore::debug::SetTraceLevelOfAll(1);
    EXPECT_EQ("locale thread recycler reads queue trace ", services.Running());
    EXPECT_EQ((std::vector<std::string>{"locale thread recycler queue trace ", "locale thread queue trace ",
                                        "locale thread trace ", "locale trace ", "locale trace ", "locale trace ",
                                        "locale "}),
              services.After(lifecycle.mStop, lifecycle.mStopCount));
    EXPECT_EQ(&Exception::Terminate, lifecycle.mStop[4].mRun);
}

TEST_F(FoundationTest, StartedTwiceAndStoppedOnce_LeavesAllServicesRunning)
{
    const TempFolder folder;
    folder.MakeFile("clip", std::string(4096, 'x'));
    Foundation::Initialize();
    Foundation::Initialize();
    EXPECT_TRUE(MemoryRecycler::Instance());
    const QueueRef queue = SharedThreadedWorkQueue::Instance()->RetrieveOrCreate(ThreadPriorities::kNormal);
    Foundation::Terminate();
    EXPECT_TRUE(MemoryRecycler::Instance());
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
    EXPECT_EQ(4096u, BytesReadOf(folder.Path(u"clip")));
    EXPECT_TRUE(Runs(*queue.GetPtr()));
    EXPECT_TRUE(mRecorder.Reports(CheckReport::kContract).empty());
    Foundation::Terminate();
    EXPECT_FALSE(MemoryRecycler::Instance());
    EXPECT_FALSE(Runs(*queue.GetPtr()));
    EXPECT_EQ(0u, BytesReadOf(folder.Path(u"clip")));
    const std::vector<CheckReport> broken = mRecorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, broken.size());
    ExpectReport(broken[0]).Expression("sCompletionPort != NULL && sCompletionPort != INVALID_HANDLE_VALUE");
}

TEST_F(FoundationTest, StartedAgainOnAnotherThread_KeepsTheMainThreadOfTheFirstStart)
{
    Foundation::Initialize();
    Foundation::Terminate();
    bool otherIsMainThread = true;
    std::thread([&otherIsMainThread] {
        Foundation::Initialize();
        otherIsMainThread = ThreadManager::CurrentThreadIsMainThread();
        Foundation::Terminate();
    }).join();
    EXPECT_FALSE(otherIsMainThread);
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
}

TEST_F(FoundationTest, StartedAgainAfterAFullStop_BuildsANewRecyclerAndKeepsTheMainThread)
{
    Foundation::Initialize();
    const ObjectPtr<MemoryRecycler, AtomicValue> first = MemoryRecycler::Instance(); // so its address is not reused
    Foundation::Terminate();
    Foundation::Initialize();
    const ObjectPtr<MemoryRecycler, AtomicValue> second = MemoryRecycler::Instance();
    EXPECT_TRUE(second);
    EXPECT_NE(first.GetPtr(), second.GetPtr());
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
    Foundation::Terminate();
}

TEST_F(FoundationTest, Start_MakesTheClassicLocaleGlobal)
{
    std::locale::global(std::locale(std::locale::classic(), new Apostrophes));
    Foundation::Initialize();
    EXPECT_EQ(std::locale::classic(), std::locale());
    Foundation::Terminate();
}

TEST_F(FoundationTest, LastStop_EndsTheTrace)
{
    Foundation::Initialize();
    tvxcore::debug::SetTraceLevelOfAll(3);
    Foundation::Initialize();
    Foundation::Terminate();
    EXPECT_TRUE(tvxcore::debug::TraceEnabled(kTracedCategory, 1, true));
    Foundation::Terminate();
    EXPECT_FALSE(tvxcore::debug::TraceEnabled(kTracedCategory, 1, true));
}

TEST_F(FoundationTest, StoppedWithoutAStart_NextStartOnlyMakesUpForIt)
{
    Foundation::Terminate();
    Foundation::Initialize();
    EXPECT_FALSE(MemoryRecycler::Instance());
    Foundation::Initialize();
    EXPECT_TRUE(MemoryRecycler::Instance());
    Foundation::Terminate();
}

TEST_F(FoundationTest, HostsThatStartAndStopOnSeveralThreadsWhileTheLibraryRuns_FindItRunning)
{
    Foundation::Initialize();
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; ++host) {
        hosts.emplace_back([] {
            for (int round = 0; round < 500; ++round) {
                Foundation::Initialize();
                EXPECT_TRUE(MemoryRecycler::Instance());
                EXPECT_FALSE(ThreadManager::CurrentThreadIsMainThread());
                Foundation::Terminate();
            }
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    EXPECT_TRUE(MemoryRecycler::Instance());
    Foundation::Terminate();
    EXPECT_FALSE(MemoryRecycler::Instance());
}

TEST(EmergencyMemoryMode, IsFalseEvenStraightAfterItWasSet)
{
    EXPECT_FALSE(GetEmergencyMemoryMode());
    SetEmergencyMemoryMode(true);
    EXPECT_FALSE(GetEmergencyMemoryMode());
}

TEST(SingletonConstructionLock, IsNotTheLockOfStartAndStop)
{
    EXPECT_NE(&FoundationLifecycle().mLock, &ORLGetGlobalCriticalSectionForSingletonConstruction());
}

// Each mode runs a separate host, linked to the shared libraries as real hosts are.
TEST(FoundationHost, StartedByAStaticAndStoppedByItsDestructor_EndsCleanly)
{
    ExpectHostOutput("plain", "started\nmain\nstopped\n", "lifecycle_static_host");
}

TEST(FoundationHost, StartedInMainAndStoppedByAStaticDestructor_EndsCleanly)
{
    ExpectHostOutput("plain", "started\nmain\nstopped\n");
}

TEST(FoundationHost, UsedByAStaticDestructorAfterTheStop_StillHasItsLocksObjectsAndConstants)
{
    ExpectHostOutput("late-use", "started\nmain\nstopped\nused after the stop\n");
}

// The library's threads may be at any instruction when the process exits, so the test runs the host ten times.
TEST(FoundationHost, NeverStopped_EndsCleanly)
{
    for (int round = 0; round < 10; ++round) {
        ExpectHostOutput("never-stopped", "started\nmain\n");
    }
}

TEST(FoundationHost, FirstPooledLockOfAProcess_IsEntryOne)
{
    ExpectHostOutput("pooled-locks", "started\nin rotation from entry 1\nmain\nstopped\n");
}

TEST(FoundationHost, StoppedWithoutAStart_EndsCleanly)
{
    ExpectHostOutput("unmatched-stop", "main\n");
}

TEST(FoundationHost, SeveralHostsStartingAndStoppingAtOnce_FindTheirServicesRunning)
{
    ExpectHostOutput("hosts-at-once", "main\n");
}
