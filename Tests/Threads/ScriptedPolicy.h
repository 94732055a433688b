// A scripted synchronisation policy for one thread. The test sets in advance what happens at each lock, each spin turn
// and each sleep. Time is a number that the script changes.
#pragma once

#include <Sync/Policy.h>

#include <deque>
#include <functional>
#include <stdexcept>
#include <vector>

namespace ORLTest {

/// The actions of the policy's operations, and a record of the operations. Only one policy object may exist at a time.
struct Script
{
    Script() { sCurrent = this; }
    ~Script() { sCurrent = nullptr; }

    /// How a sleep ends; a SleepAction may also throw.
    enum class Wake { kNotified, kTimeout };
    using SleepAction = std::function<Wake()>;

    std::deque<SleepAction> mSleeps;                // one for each expected sleep; a further sleep throws
    std::function<void()> mAtLock = [] {};          // called before each lock of a mutex
    std::function<void()> mAtPause = [] {};         // called at each turn of a spin
    std::function<void(int)> mAtSleep = [](int) {}; // called by SleepMilliseconds
    int mSpinTurns = 0;

    long mNow = 0;            // milliseconds
    std::vector<int> mLimits; // limits of the sleeps so far; -1 is infinite
    int mLocksTaken = 0;
    int mLocksHeld = 0;
    int mNotifications = 0;

    Wake NextSleep(int inLimit)
    {
        mLimits.push_back(inLimit);
        if (mSleeps.empty()) {
            throw std::logic_error("a sleep that the script does not know");
        }
        const SleepAction action = mSleeps.front(); // a copy, because the action may change mSleeps
        mSleeps.pop_front();
        --mLocksHeld;
        const Relock relock{*this};
        return action();
    }

    static Script& Current() { return *sCurrent; }

private:
    struct Relock
    {
        Script& mScript;
        ~Relock() { ++mScript.mLocksHeld; }
    };

    static inline Script* sCurrent = nullptr;
};

struct ScriptedPolicy : ORL::Sync::SystemPolicy
{
    struct Mutex
    {
    };
    class MutexLock
    {
    public:
        explicit MutexLock(Mutex&) { lock(); }
        ~MutexLock()
        {
            if (mHeld) {
                unlock();
            }
        }
        MutexLock(const MutexLock&) = delete;
        MutexLock& operator=(const MutexLock&) = delete;
        void lock()
        {
            const std::function<void()> action = Script::Current().mAtLock; // a copy: the action may replace mAtLock
            action();
            ++Script::Current().mLocksTaken;
            ++Script::Current().mLocksHeld;
            mHeld = true;
        }
        void unlock()
        {
            --Script::Current().mLocksHeld;
            mHeld = false;
        }

    private:
        bool mHeld = false;
    };
    struct Condition
    {
    };
    static void SleepOn(Condition&, MutexLock&) { Script::Current().NextSleep(-1); }
    static bool SleepOnFor(Condition&, MutexLock&, int inMilliseconds)
    {
        return Script::Current().NextSleep(inMilliseconds) == Script::Wake::kNotified;
    }
    static void NotifyAll(Condition&) { ++Script::Current().mNotifications; }
    static void Pause(int) { Script::Current().mAtPause(); }
    static int SpinTurns() { return Script::Current().mSpinTurns; }
    static int LongSpinTurns() { return Script::Current().mSpinTurns; }
    static void SleepMilliseconds(int inMilliseconds) { Script::Current().mAtSleep(inMilliseconds); }
};

} // namespace ORLTest
