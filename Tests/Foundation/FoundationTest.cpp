#include <ORLFoundation.h>

#include <CheckRecorder.h>
#include <CountedLifecycle.h>
#include <ProcessRunner.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <locale>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::ProcessResult;
using ORLTest::RunBesideThisProgram;

namespace {

std::vector<std::string> Names(const LifecycleStep* inSteps, std::size_t inCount)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < inCount; ++i) {
        names.emplace_back(inSteps[i].mName);
    }
    return names;
}

void ExpectHostSays(const char* inMode, const std::string& inOutput, const char* inProgram = "lifecycle_host")
{
    const ProcessResult result = RunBesideThisProgram(inProgram, {inMode});
    EXPECT_EQ(0, result.mExitCode) << inMode << ": " << result.mErrors;
    EXPECT_EQ(inOutput, result.mOutput) << inMode;
}

/// Restarts report a check of the thread records, which is theirs to test.
class FoundationTest : public ::testing::Test
{
protected:
    CheckRecorder mRecorder;
};

} // namespace

TEST(FoundationSequences, StartAndStop_AreInTheirFixedOrders)
{
    const CountedLifecycle& lifecycle = FoundationLifecycle();
    EXPECT_EQ((std::vector<std::string>{"Exception::Initialize", "Locale::Initialize",
                                        "ThreadManager::RegisterMainThread", "CreateMemoryRecycler",
                                        "StartupAsyncFileOperations"}),
              Names(lifecycle.mStart, lifecycle.mStartCount));
    EXPECT_EQ((std::vector<std::string>{"TerminateAsyncFileOperations", "DropMemoryRecycler",
                                        "SharedThreadedWorkQueue::Shutdown", "ThreadManager::UnregisterMainThread",
                                        "Exception::Terminate", "tvxcore::debug::ShutdownTraceManager"}),
              Names(lifecycle.mStop, lifecycle.mStopCount));
}

TEST_F(FoundationTest, StartedTwiceAndStoppedOnce_LeavesAllServicesRunning)
{
    Foundation::Initialize();
    Foundation::Initialize();
    EXPECT_TRUE(MemoryRecycler::Instance());
    Foundation::Terminate();
    EXPECT_TRUE(MemoryRecycler::Instance());
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
    Foundation::Terminate();
    EXPECT_FALSE(MemoryRecycler::Instance());
}

TEST_F(FoundationTest, StartedAgainAfterAFullStop_BuildsANewRecyclerAndKeepsTheMainThread)
{
    Foundation::Initialize();
    const ObjectPtr<MemoryRecycler, AtomicValue> first = MemoryRecycler::Instance(); // keeps its address taken
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
    class Grouping : public std::numpunct<char>
    {
        char do_thousands_sep() const override { return '\''; }
    };
    std::locale::global(std::locale(std::locale::classic(), new Grouping));
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
    const auto category = reinterpret_cast<const unsigned char*>("ORLFoundation::TVXErrorManager");
    EXPECT_TRUE(tvxcore::debug::TraceEnabled(category, 1, true));
    Foundation::Terminate();
    EXPECT_FALSE(tvxcore::debug::TraceEnabled(category, 1, true));
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

// Each mode is a host of its own, linked to the shared libraries as hosts are.
TEST(FoundationHost, StartedByAStaticAndStoppedByItsDestructor_EndsCleanly)
{
    ExpectHostSays("plain", "started\nmain\nstopped\n", "lifecycle_static_host");
}

TEST(FoundationHost, StartedInMainAndStoppedByAStaticDestructor_EndsCleanly)
{
    ExpectHostSays("plain", "started\nmain\nstopped\n");
}

TEST(FoundationHost, UsedByAStaticDestructorAfterTheStop_StillHasItsLocksObjectsAndConstants)
{
    ExpectHostSays("late-use", "started\nmain\nstopped\nused after the stop\n");
}

// The library's threads are wherever they are when the process ends, so this is done several times.
TEST(FoundationHost, NeverStopped_EndsCleanly)
{
    for (int round = 0; round < 10; ++round) {
        ExpectHostSays("never-stopped", "started\nmain\n");
    }
}

TEST(FoundationHost, StoppedWithoutAStart_EndsCleanly)
{
    ExpectHostSays("unmatched-stop", "main\n");
}

TEST(FoundationHost, SeveralHostsStartingAndStoppingAtOnce_FindTheirServicesRunning)
{
    ExpectHostSays("hosts-at-once", "main\n");
}
