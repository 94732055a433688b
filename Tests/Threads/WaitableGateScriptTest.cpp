// Tests the behaviour of a gate at each lock and each sleep, driven by a script on one thread with the script's clock.
#include <GateOf.h>
#include <ScriptedPolicy.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

using namespace ORL;
using ORLTest::GateOf;
using ORLTest::Script;
using ORLTest::ScriptedPolicy;

namespace {

using Gate = GateOf<ScriptedPolicy>;
using Limits = std::vector<int>;

class WaitableGateScript : public testing::Test
{
protected:
    // Returns a spurious wake-up that occurs inMilliseconds after the sleep began.
    Script::SleepAction SpuriousAfter(long inMilliseconds)
    {
        return [this, inMilliseconds] {
            mScript.mNow += inMilliseconds;
            return Script::Wake::kNotified;
        };
    }
    Script::SleepAction TimeoutAfter(long inMilliseconds)
    {
        return [this, inMilliseconds] {
            mScript.mNow += inMilliseconds;
            return Script::Wake::kTimeout;
        };
    }
    Script::SleepAction Pulse()
    {
        return [this] {
            mGate.Open();
            mGate.Close();
            return Script::Wake::kNotified;
        };
    }

    Script mScript;
    Gate mGate;
};

} // namespace

TEST_F(WaitableGateScript, SpuriousWake_StartsTheTimeLimitAnew)
{
    mScript.mSleeps = {SpuriousAfter(30), SpuriousAfter(49), SpuriousAfter(30), TimeoutAfter(50)};
    EXPECT_EQ(kWaitTimeout, mGate.Wait(50));
    EXPECT_EQ((Limits{50, 50, 50, 50}), mScript.mLimits) << "each sleep has the whole limit";
    EXPECT_EQ(159, mScript.mNow) << "the wait lasted longer than its limit";
}

TEST_F(WaitableGateScript, SpuriousWakes_DoNotEndAnEndlessWait)
{
    mScript.mSleeps = {SpuriousAfter(1), SpuriousAfter(1), Pulse()};
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_EQ((Limits{-1, -1, -1}), mScript.mLimits);
}

TEST_F(WaitableGateScript, GenerationEndsTheSleep_ThoughTheGateIsClosedAgain)
{
    mScript.mSleeps = {Pulse()};
    EXPECT_EQ(kSuccess, mGate.Wait(20));
    EXPECT_EQ(kWaitTimeout, mGate.Wait(0));
    EXPECT_EQ(1u, mGate.GetGeneration());
    EXPECT_EQ(1, mScript.mNotifications);
}

TEST_F(WaitableGateScript, OpenFlagAlone_DoesNotEndASleep)
{
    // The opener has set the flag but not yet locked the mutex when the sleeper wakes spuriously.
    mScript.mSleeps = {
        [this] {
            mScript.mAtLock = [this] {
                mScript.mAtLock = [] {};
                throw std::runtime_error("the opener gets no further");
            };
            EXPECT_THROW(mGate.Open(), std::runtime_error);
            return Script::Wake::kNotified;
        },
        TimeoutAfter(20),
    };
    EXPECT_EQ(kWaitTimeout, mGate.Wait(20));
    EXPECT_EQ((Limits{20, 20}), mScript.mLimits);
}

TEST_F(WaitableGateScript, SleepThatRanOut_IsATimeoutThoughAnOpeningCameMeanwhile)
{
    mScript.mSleeps = {[this] {
        mGate.Open();
        return Script::Wake::kTimeout;
    }};
    EXPECT_EQ(kWaitTimeout, mGate.Wait(20));
    EXPECT_EQ(0, mGate.CountWaiters());
}

TEST_F(WaitableGateScript, Poll_NeverTakesTheLock)
{
    EXPECT_EQ(kWaitTimeout, mGate.Wait(0));
    EXPECT_EQ(0, mScript.mLocksTaken);
}

TEST_F(WaitableGateScript, NegativeTimeOtherThanEndless_HasRunOutAlready)
{
    EXPECT_EQ(kWaitTimeout, mGate.Wait(-2));
    EXPECT_EQ(kWaitTimeout, mGate.Wait(-2147483647 - 1));
    EXPECT_EQ(0, mScript.mLocksTaken);
    mGate.Open();
    EXPECT_EQ(kSuccess, mGate.Wait(-2));
}

TEST_F(WaitableGateScript, OpenGate_IsPassedAndOpenedAgainWithoutTheLock)
{
    mGate.Open();
    EXPECT_EQ(1, mScript.mLocksTaken) << "the opening itself";
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_EQ(kSuccess, mGate.Wait(20));
    mGate.Open();
    EXPECT_EQ(1, mScript.mLocksTaken);
}

TEST_F(WaitableGateScript, Close_NeverTakesTheLock)
{
    mGate.Close();
    mGate.Open();
    const int locksOfOpen = mScript.mLocksTaken;
    mGate.Close();
    mGate.Close();
    EXPECT_EQ(locksOfOpen, mScript.mLocksTaken);
    EXPECT_EQ(kWaitTimeout, mGate.Wait(0));
}

TEST_F(WaitableGateScript, OpenWithoutWaiters_LeavesTheGenerationAndNotifiesNobody)
{
    mGate.Open();
    EXPECT_EQ(0u, mGate.GetGeneration());
    EXPECT_EQ(0, mScript.mNotifications);
}

TEST_F(WaitableGateScript, GateOpenedOnTheWayToTheLock_IsPassedWithoutASleep)
{
    mScript.mAtLock = [this] {
        mScript.mAtLock = [] {};
        mGate.Open();
    };
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_TRUE(mScript.mLimits.empty());
    EXPECT_EQ(0u, mGate.GetGeneration()) << "the opening found no waiter";
    EXPECT_EQ(0, mGate.CountWaiters());
}

TEST_F(WaitableGateScript, Sleeper_IsCountedWhileItSleepsAndNoLonger)
{
    mScript.mSleeps = {[this] {
        EXPECT_EQ(1, mGate.CountWaiters());
        mGate.Open();
        return Script::Wake::kNotified;
    }};
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_EQ(0, mGate.CountWaiters());
    EXPECT_EQ(0, mScript.mLocksHeld);
}

TEST_F(WaitableGateScript, ConditionThatThrows_PassesThroughAndLeavesTheGateUsable)
{
    mScript.mSleeps = {[]() -> Script::Wake { throw std::runtime_error("condition"); }};
    EXPECT_THROW(mGate.Wait(-1), std::runtime_error);
    EXPECT_EQ(0, mScript.mLocksHeld) << "the mutex is released";
    EXPECT_EQ(0, mGate.CountWaiters());
    mScript.mSleeps = {Pulse()};
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
}

TEST_F(WaitableGateScript, MutexThatThrows_PassesThroughWaitAndOpen)
{
    mScript.mAtLock = [] { throw std::runtime_error("mutex"); };
    EXPECT_THROW(mGate.Wait(-1), std::runtime_error);
    EXPECT_THROW(mGate.Open(), std::runtime_error);
    mScript.mAtLock = [] {};
    EXPECT_EQ(0, mScript.mLocksHeld);
    EXPECT_EQ(kSuccess, mGate.Wait(0)) << "the flag was set before the mutex";
}

TEST_F(WaitableGateScript, OpeningSeenWhileLookingOn_NeedsNoSleep)
{
    mScript.mSpinTurns = 100;
    int turns = 0;
    mScript.mAtPause = [&] {
        EXPECT_EQ(0, mScript.mLocksHeld) << "the opener must be able to take the mutex";
        if (++turns == 7) {
            mGate.Open();
        }
    };
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_EQ(7, turns);
    EXPECT_TRUE(mScript.mLimits.empty());
}

TEST_F(WaitableGateScript, PulseWhileLookingOn_ReleasesTheWaiterToo)
{
    mScript.mSpinTurns = 100;
    int turns = 0;
    mScript.mAtPause = [&] {
        if (++turns == 7) {
            mGate.Open();
            mGate.Close();
        }
    };
    EXPECT_EQ(kSuccess, mGate.Wait(-1));
    EXPECT_EQ(100, turns) << "the flag was never seen open";
    EXPECT_TRUE(mScript.mLimits.empty());
    EXPECT_EQ(kWaitTimeout, mGate.Wait(0));
}

TEST_F(WaitableGateScript, LookingOnInVain_EndsInASleepOfTheWholeLimit)
{
    mScript.mSpinTurns = 100;
    int turns = 0;
    mScript.mAtPause = [&] { ++turns; };
    mScript.mSleeps = {TimeoutAfter(50)};
    EXPECT_EQ(kWaitTimeout, mGate.Wait(50));
    EXPECT_EQ(100, turns);
    EXPECT_EQ(Limits{50}, mScript.mLimits);
}

TEST_F(WaitableGateScript, DestroyedGate_OpensFirst)
{
    bool opened = false;
    {
        Gate gate;
        mScript.mAtLock = [&] { opened = gate.Wait(0) == kSuccess; };
    }
    mScript.mAtLock = [] {};
    EXPECT_TRUE(opened);
}
