#include <Foundation/CountedLifecycle.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;

namespace {

std::string sLog;
const char* sFailing = ""; // the name of the step that throws

template <char Name>
void Note()
{
    if (*sFailing == Name) {
        throw std::runtime_error("step");
    }
    sLog += Name;
}

constexpr LifecycleStep kStart[] = {{"a", &Note<'a'>}, {"b", &Note<'b'>}, {"c", &Note<'c'>}};
constexpr LifecycleStep kStop[] = {{"x", &Note<'x'>}, {"y", &Note<'y'>}};

class CountedLifecycleTest : public ::testing::Test
{
protected:
    CountedLifecycleTest()
    {
        sLog.clear();
        sFailing = "";
    }

    bool LockIsFree() const
    {
        bool isFree = false;
        std::thread([&] {
            const CriticalSectionTryLock attempt(mLifecycle.mLock);
            isFree = attempt.IsLocked();
        }).join();
        return isFree;
    }

    CountedLifecycle mLifecycle{kStart, kStop};
};

} // namespace

TEST_F(CountedLifecycleTest, FirstStartAndLastStop_RunTheStepsInTheirOrder)
{
    mLifecycle.Initialize();
    EXPECT_EQ("abc", sLog);
    mLifecycle.Initialize();
    mLifecycle.Terminate();
    EXPECT_EQ("abc", sLog) << "one start is still owed its stop";
    mLifecycle.Terminate();
    EXPECT_EQ("abcxy", sLog);
    EXPECT_EQ(0, mLifecycle.mCount);
}

TEST_F(CountedLifecycleTest, StartAfterAFullStop_RunsTheWholeSequenceAgain)
{
    for (int round = 0; round < 3; ++round) {
        mLifecycle.Initialize();
        mLifecycle.Terminate();
    }
    EXPECT_EQ("abcxyabcxyabcxy", sLog);
}

TEST_F(CountedLifecycleTest, StopWithoutAStart_TakesTheCountToMinusOneAndTheNextStartOnlyBack)
{
    mLifecycle.Terminate();
    EXPECT_EQ(-1, mLifecycle.mCount);
    mLifecycle.Initialize();
    EXPECT_EQ(0, mLifecycle.mCount);
    EXPECT_EQ("", sLog) << "neither of them ran anything";
    mLifecycle.Initialize();
    EXPECT_EQ("abc", sLog);
}

TEST_F(CountedLifecycleTest, ExceptionOfAStartStep_LeavesWithTheLockFreeAndTheCountUnchanged)
{
    for (const char* failing : {"a", "b", "c"}) {
        sLog.clear();
        sFailing = failing;
        EXPECT_THROW(mLifecycle.Initialize(), std::runtime_error);
        EXPECT_EQ(0, mLifecycle.mCount);
        EXPECT_TRUE(LockIsFree());
        EXPECT_EQ(std::string("abc").substr(0, sLog.size()), sLog);
        EXPECT_EQ(failing[0] - 'a', static_cast<int>(sLog.size())) << "finished steps stay done, later ones do not run";
    }
    sLog.clear();
    sFailing = "";
    mLifecycle.Initialize();
    EXPECT_EQ("abc", sLog) << "a later start runs the finished steps again";
    EXPECT_EQ(1, mLifecycle.mCount);
}

TEST_F(CountedLifecycleTest, ExceptionOfAStopStep_LeavesWithTheLockFreeAndTheCountUnchanged)
{
    mLifecycle.Initialize();
    sLog.clear();
    sFailing = "y";
    EXPECT_THROW(mLifecycle.Terminate(), std::runtime_error);
    EXPECT_EQ("x", sLog);
    EXPECT_EQ(1, mLifecycle.mCount);
    EXPECT_TRUE(LockIsFree());
    sFailing = "";
    mLifecycle.Terminate();
    EXPECT_EQ("xxy", sLog);
    EXPECT_EQ(0, mLifecycle.mCount);
}

namespace {

// Deliberately not atomic: the lock of the lifecycle guards it.
bool sIsRunning = false;
int sStarts = 0;
std::atomic<int> sFaults{0};

void StartService()
{
    sFaults.fetch_add(sIsRunning ? 1 : 0);
    sIsRunning = true;
    ++sStarts;
}

void StopService()
{
    sFaults.fetch_add(sIsRunning ? 0 : 1);
    sIsRunning = false;
}

constexpr LifecycleStep kStartService[] = {{"start", &StartService}};
constexpr LifecycleStep kStopService[] = {{"stop", &StopService}};

} // namespace

TEST_F(CountedLifecycleTest, HostsThatStartAndStopAtOnce_FindTheServiceRunningBetween)
{
    CountedLifecycle lifecycle(kStartService, kStopService);
    std::atomic<int> ready{0};
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; ++host) {
        hosts.emplace_back([&] {
            ready.fetch_add(1);
            while (ready.load() != 4) {
                std::this_thread::yield();
            }
            for (int round = 0; round < 2000; ++round) {
                lifecycle.Initialize();
                {
                    const CriticalSectionLock lock(lifecycle.mLock);
                    sFaults.fetch_add(sIsRunning ? 0 : 1);
                }
                lifecycle.Terminate();
            }
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    EXPECT_EQ(0, sFaults.load());
    EXPECT_FALSE(sIsRunning);
    EXPECT_GE(sStarts, 1);
    EXPECT_EQ(0, lifecycle.mCount);
}
