// The road from those who queue work to the threads that do it.
//
// Work leaves in the order in which it came, one node at a time: a thread that took several would hold back work that
// others are free to do, and two pieces of work that wait for each other would never meet. Idle threads sleep; a push
// wakes one of them, and makes no system call when nobody sleeps.
//
// Two lists. A push appends to the inbox under the inbox's lock; a thread takes from the outbox under the outbox's
// lock, and moves the whole inbox over when the outbox is empty. So the two sides rarely meet, and a lock is held for
// a few instructions. The outbox's lock comes first.
//
// No work is left lying: a sleeper announces itself first and looks under both locks second, a push appends under the
// lock first and looks for sleepers second. So either the sleeper sees the work or the push sees the sleeper. One
// idle thread at a time may spin for a moment, and a push may trust it with the only item there is: the spinner ends
// its spin first and looks under the locks second. How long it spins is learned from how long work took to come: a spin
// that ends in sleep has cost a processor for nothing.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace threads {

/// The steps that a model check leaves out one by one, to prove that it would notice.
enum class ChannelStep {
    kSleeperLooksAgain,    // who has announced its sleep looks for work once more
    kSpinnerEndsFirst,     // who has found work in a spin stops being counted as a spinner before it takes the work
    kOnlyItemNeedsNoWake,  // a spinner is trusted with one item, not with several
    kResumeWakes,          // the end of a pause wakes the sleepers
    kCloseWakes,           // closing wakes the sleepers
    kRefusalUnderLock,     // whether the channel is closed is asked under the lock of the list
};

/// A piece of work in the channel, which neither makes nor deletes nodes.
struct WorkNode
{
    WorkNode* mNext = nullptr;
};

template <class Policy>
class WorkChannel
{
public:
    /// How long an idle thread spins at most before it sleeps; 0 where that cannot pay, since those who queue work need the
    /// thread's processor.
    explicit WorkChannel(unsigned int inSpinTurns) : mSpinTurns(inSpinTurns)
    {
        Policy::Reach(mInbox.mLast) = nullptr;
        Policy::Reach(mInbox.mIsClosed) = false;
        Policy::Reach(mHabit) = Habit{inSpinTurns, 0};
    }
    WorkChannel(const WorkChannel&) = delete;
    WorkChannel& operator=(const WorkChannel&) = delete;

    /// False when the channel is closed; the node then stays the caller's.
    bool Push(WorkNode& ioNode)
    {
        bool isOnly = false;
        if (!Append(ioNode, isOnly)) {
            return false;
        }
        const std::uint32_t idle = Policy::Load(mIdle);
        const bool isSpinnersOwn = idle >= kSpinner && (isOnly || !Policy::Keeps(ChannelStep::kOnlyItemNeedsNoWake));
        if (Sleepers(idle) != 0 && !isSpinnersOwn) {
            WakeOne();
        }
        return true;
    }

    /// The next node, for as long as it takes to come. Null when the channel is closed and empty.
    WorkNode* Take()
    {
        for (;;) {
            WorkNode* node = nullptr;
            if (TakeNow(node)) {
                return node;
            }
            if (!SpinForWork()) {
                SleepUntilWoken();
            }
        }
    }

    /// Holds back what is in the channel and what comes. What a thread has taken counts as begun.
    /// A closed channel cannot be paused.
    void Pause()
    {
        const MutexLock outboxLock(mOutbox.mMutex);
        const MutexLock inboxLock(mInbox.mMutex);
        if (!Policy::Reach(mInbox.mIsClosed)) {
            Policy::Store(mPaused, kPaused);
        }
    }

    void Resume()
    {
        {
            const MutexLock lock(mOutbox.mMutex);
            EndPause();
        }
        if (Policy::Keeps(ChannelStep::kResumeWakes)) {
            WakeSleepers();
        }
    }

    void BlockWhilePaused()
    {
        while (Policy::Load(mPaused) == kPaused) {
            Policy::SleepOn(mPaused, kPaused);
        }
    }

    /// Refuses further nodes and ends a pause. What is in the channel still comes out.
    void Close()
    {
        {
            const MutexLock outboxLock(mOutbox.mMutex);
            const MutexLock inboxLock(mInbox.mMutex);
            Policy::Reach(mInbox.mIsClosed) = true;
            EndPause();
        }
        if (Policy::Keeps(ChannelStep::kCloseWakes)) {
            WakeSleepers();
        }
    }

    bool IsClosed()
    {
        const MutexLock lock(mInbox.mMutex);
        return Policy::Reach(mInbox.mIsClosed);
    }

    /// How many threads sleep now and have not been woken.
    unsigned int CountSleepers() const { return Sleepers(Policy::Load(mIdle)); }

private:
    using MutexLock = typename Policy::MutexLock;
    using Word = typename Policy::template Atomic<std::uint32_t>;
    using NodePointer = typename Policy::template Atomic<WorkNode*>;

    static constexpr std::uint32_t kSleeper = 1;
    static constexpr std::uint32_t kSpinner = 1u << 24;
    static constexpr std::uint32_t kHopefulSpins = 4;
    static constexpr std::uint32_t kSpinsSkipped = 16;
    static constexpr unsigned int kLeastTurns = 64;
    static constexpr std::uint32_t kRunning = 0;
    static constexpr std::uint32_t kPaused = 1;

    static std::uint32_t Sleepers(std::uint32_t inIdle) { return inIdle % kSpinner; }

    bool Append(WorkNode& ioNode, bool& outIsOnly)
    {
        ioNode.mNext = nullptr;
        if (!Policy::Keeps(ChannelStep::kRefusalUnderLock) && IsClosed()) {
            return false;
        }
        const MutexLock lock(mInbox.mMutex);
        if (Policy::Keeps(ChannelStep::kRefusalUnderLock) && Policy::Reach(mInbox.mIsClosed)) {
            return false;
        }
        WorkNode*& last = Policy::Reach(mInbox.mLast);
        const bool wasEmpty = Policy::Load(mInbox.mFirst) == nullptr;
        if (wasEmpty) {
            Policy::Store(mInbox.mFirst, &ioNode);
        } else {
            last->mNext = &ioNode;
        }
        last = &ioNode;
        outIsOnly = wasEmpty && Policy::Load(mOutbox.mFirst) == nullptr;
        return true;
    }

    // True when there is an answer: a node, or null for the end.
    bool TakeNow(WorkNode*& outNode)
    {
        const MutexLock lock(mOutbox.mMutex);
        if (Policy::Load(mPaused) == kPaused) {
            return false;
        }
        bool isOver = false;
        outNode = Policy::Load(mOutbox.mFirst);
        if (outNode == nullptr) {
            outNode = MoveInboxOver(isOver);
        }
        if (outNode != nullptr) {
            Policy::Store(mOutbox.mFirst, outNode->mNext);
        }
        return outNode != nullptr || isOver;
    }

    // The outbox is set before the inbox's lock goes: a push that finds the inbox empty must not find the outbox
    // empty too while the nodes are on their way.
    WorkNode* MoveInboxOver(bool& outIsOver)
    {
        const MutexLock lock(mInbox.mMutex);
        WorkNode* const first = Policy::Load(mInbox.mFirst);
        if (first != nullptr) {
            Policy::Store(mOutbox.mFirst, first);
            Policy::Store(mInbox.mFirst, static_cast<WorkNode*>(nullptr));
        }
        outIsOver = first == nullptr && Policy::Reach(mInbox.mIsClosed);
        return first;
    }

    bool HasWork()
    {
        const MutexLock outboxLock(mOutbox.mMutex);
        if (Policy::Load(mPaused) == kPaused) {
            return false;
        }
        const MutexLock inboxLock(mInbox.mMutex);
        return Policy::Load(mOutbox.mFirst) != nullptr || Policy::Load(mInbox.mFirst) != nullptr
               || Policy::Reach(mInbox.mIsClosed);
    }

    // Without the locks, for a spinner: it looks again under them.
    bool SeemsToHaveWork() const
    {
        return Policy::Load(mPaused) == kRunning
               && (Policy::Load(mInbox.mFirst) != nullptr || Policy::Load(mOutbox.mFirst) != nullptr);
    }

    bool SpinForWork()
    {
        if (mSpinTurns == 0 || !BeginSpin()) {
            return false;
        }
        const unsigned int most = TurnsWorthwhile();
        unsigned int turns = 0;
        bool isFound = false;
        while (!isFound && turns != most) {
            Policy::Pause();
            isFound = SeemsToHaveWork();
            ++turns;
        }
        LearnFromSpin(isFound, turns);
        if (Policy::Keeps(ChannelStep::kSpinnerEndsFirst)) {
            Policy::Subtract(mIdle, kSpinner);
        }
        return isFound;
    }

    // Where work has lately come too late for any spin, only a spin now and then finds out whether that is still so.
    unsigned int TurnsWorthwhile()
    {
        const Habit& habit = Policy::Reach(mHabit);
        if (habit.mVainSpins < kHopefulSpins) {
            return habit.mTurns;
        }
        return habit.mVainSpins % kSpinsSkipped == 0 ? mSpinTurns : 0;
    }

    // Work that came was worth twice the time it took, on the average of the last few times.
    void LearnFromSpin(bool inIsFound, unsigned int inTurns)
    {
        Habit& habit = Policy::Reach(mHabit);
        if (!inIsFound) {
            ++habit.mVainSpins;
            return;
        }
        const unsigned int average = (7 * habit.mTurns + 2 * inTurns + kLeastTurns) / 8;
        habit.mTurns = average < mSpinTurns ? average : mSpinTurns;
        habit.mVainSpins = 0;
    }

    bool BeginSpin()
    {
        const std::uint32_t idle = Policy::Load(mIdle);
        return idle < kSpinner && Policy::CompareAndSet(mIdle, idle, idle + kSpinner);
    }

    void SleepUntilWoken()
    {
        Policy::Add(mIdle, kSleeper);
        const bool mustStay = Policy::Keeps(ChannelStep::kSleeperLooksAgain) && HasWork();
        if (mustStay && ClaimSleepers(1) == 1) {
            return;
        }
        // Asleep, or somebody has claimed this sleeper in between: either way a wake belongs to it.
        TakeWake();
    }

    void TakeWake()
    {
        for (;;) {
            const std::uint32_t wakes = Policy::Load(mWakes);
            if (wakes == 0) {
                Policy::SleepOn(mWakes, 0);
            } else if (Policy::CompareAndSet(mWakes, wakes, wakes - 1)) {
                return;
            }
        }
    }

    // Takes up to inMost threads off the count of sleepers: whoever claims a sleeper owes it a wake.
    std::uint32_t ClaimSleepers(std::uint32_t inMost)
    {
        for (;;) {
            const std::uint32_t idle = Policy::Load(mIdle);
            const std::uint32_t claimed = Sleepers(idle) < inMost ? Sleepers(idle) : inMost;
            if (claimed == 0 || Policy::CompareAndSet(mIdle, idle, idle - claimed)) {
                return claimed;
            }
        }
    }

    void WakeOne()
    {
        if (ClaimSleepers(1) != 0) {
            Policy::Add(mWakes, 1);
            Policy::WakeOne(mWakes);
        }
    }

    void WakeSleepers()
    {
        const std::uint32_t claimed = ClaimSleepers(kSpinner);
        if (claimed != 0) {
            Policy::Add(mWakes, claimed);
            Policy::WakeAll(mWakes);
        }
    }

    // The caller holds the outbox's lock.
    void EndPause()
    {
        if (Policy::Load(mPaused) == kPaused) {
            Policy::Store(mPaused, kRunning);
            Policy::WakeAll(mPaused);
        }
    }

    // Each side's words stand on a memory line of their own, and so do the words that both look at and that rarely
    // change.
    struct alignas(Policy::kLine) Inbox
    {
        typename Policy::Mutex mMutex;
        NodePointer mFirst{nullptr};
        typename Policy::template Guarded<WorkNode*> mLast;
        typename Policy::template Guarded<bool> mIsClosed;
    };

    struct alignas(Policy::kLine) Outbox
    {
        typename Policy::Mutex mMutex;
        NodePointer mFirst{nullptr};
    };

    struct Habit
    {
        unsigned int mTurns;      // of a spin that may pay
        std::uint32_t mVainSpins; // since work was last found
    };

    const unsigned int mSpinTurns;
    Inbox mInbox;
    Outbox mOutbox;
    alignas(Policy::kLine) Word mIdle{0};   // the number of sleepers, and kSpinner while somebody spins
    typename Policy::template Guarded<Habit> mHabit; // the spinner's alone
    Word mPaused{kRunning};                 // changed under the outbox's lock
    alignas(Policy::kLine) Word mWakes{0};  // owed to claimed sleepers
};

} // namespace threads
} // namespace tvxcore
