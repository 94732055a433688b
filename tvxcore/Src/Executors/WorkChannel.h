// The queue from the clients that submit work to the threads that run it.
//
// Work is dequeued in first-in, first-out order, one node at a time: a thread that took several would delay work that
// idle threads could run, and would deadlock if one of its tasks waited for a later one. Idle threads sleep; a push
// wakes one of them, and makes no system call if none sleeps.
//
// A channel has two lists. A push appends to the inbox under the inbox lock. A thread dequeues from the outbox under
// the outbox lock, and moves the whole inbox over if the outbox is empty. So the two sides rarely contend, and each
// lock is held for a few instructions. Lock order: outbox before inbox.
//
// No wake-up is lost. A sleeper first announces itself, then checks for work under both locks; a push first appends
// under the lock, then checks for sleepers. So either the sleeper sees the work or the push sees the sleeper. One idle
// thread at a time may spin for a short time, and a push may leave a single item to it without a wake: the spinner
// first ends its spin, then checks under the locks. The spin time adapts to how long work has taken to arrive, since a
// spin that ends in sleep only wastes processor time.
#pragma once

#include <cstdint>
#include <tvxcore/ThreadSafety.h>

namespace tvxcore {
namespace threads {

/// Steps that the model check omits one by one, to prove that it detects each omission.
enum class ChannelStep {
    kSleeperRechecks,     // a thread that has announced its sleep checks for work once more
    kSpinnerEndsFirst,    // a spinner that found work leaves mIdle before it dequeues
    kOnlyItemNeedsNoWake, // a push leaves one item to a spinner, but not several
    kResumeWakes,         // the end of a pause wakes the sleepers
    kCloseWakes,          // closing wakes the sleepers
    kRefusalUnderLock,    // a push checks under the list's lock whether the channel is closed
};

/// A work item. The channel neither creates nor deletes nodes.
struct WorkNode
{
    WorkNode* mNext = nullptr;
};

template <class Policy>
class WorkChannel
{
public:
    /// inSpinTurns is the maximum number of turns that an idle thread spins before it sleeps. Pass 0 if spinning cannot
    /// pay because the clients need the thread's processor.
    explicit WorkChannel(unsigned int inSpinTurns) : mSpinTurns(inSpinTurns)
    {
        Policy::Reach(mInbox.mLast) = nullptr;
        Policy::Reach(mInbox.mIsClosed) = false;
        Policy::Reach(mSpinHistory) = SpinHistory{inSpinTurns, 0};
    }
    WorkChannel(const WorkChannel&) = delete;
    WorkChannel& operator=(const WorkChannel&) = delete;

    /// Returns false if the channel is closed; the caller then keeps the node.
    bool Push(WorkNode& ioNode)
    {
        bool isOnly = false;
        if (!Append(ioNode, isOnly)) {
            return false;
        }
        const std::uint32_t idle = Policy::Load(mIdle);
        const bool isSpinnersOwn = idle >= kSpinner && (isOnly || !Policy::Executes(ChannelStep::kOnlyItemNeedsNoWake));
        if (Sleepers(idle) != 0 && !isSpinnersOwn) {
            WakeOne();
        }
        return true;
    }

    /// Returns the next node; waits for it without limit. Returns null if the channel is closed and empty.
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

    /// Holds back all nodes in the channel and later ones. Nodes already dequeued count as started. Has no effect on a
    /// closed channel.
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
        if (Policy::Executes(ChannelStep::kResumeWakes)) {
            WakeSleepers();
        }
    }

    void BlockWhilePaused()
    {
        while (Policy::Load(mPaused) == kPaused) {
            Policy::SleepOn(mPaused, kPaused);
        }
    }

    /// Refuses further nodes and ends a pause. Nodes in the channel can still be dequeued.
    void Close()
    {
        {
            const MutexLock outboxLock(mOutbox.mMutex);
            const MutexLock inboxLock(mInbox.mMutex);
            Policy::Reach(mInbox.mIsClosed) = true;
            EndPause();
        }
        if (Policy::Executes(ChannelStep::kCloseWakes)) {
            WakeSleepers();
        }
    }

    bool IsClosed()
    {
        const MutexLock lock(mInbox.mMutex);
        return Policy::Reach(mInbox.mIsClosed);
    }

    /// Returns the number of threads that sleep and have not been woken.
    unsigned int CountSleepers() const { return Sleepers(Policy::Load(mIdle)); }

private:
    using MutexLock = typename Policy::MutexLock;
    using Word = typename Policy::template Atomic<std::uint32_t>;
    using NodePointer = typename Policy::template Atomic<WorkNode*>;

    static constexpr std::uint32_t kSleeper = 1;
    static constexpr std::uint32_t kSpinner = 1u << 24;
    static constexpr std::uint32_t kMaxFailedSpins = 4;
    static constexpr std::uint32_t kSpinsSkipped = 16;
    static constexpr unsigned int kMinTurns = 64;
    static constexpr std::uint32_t kRunning = 0;
    static constexpr std::uint32_t kPaused = 1;

    static std::uint32_t Sleepers(std::uint32_t inIdle) { return inIdle % kSpinner; }

    bool Append(WorkNode& ioNode, bool& outIsOnly)
    {
        ioNode.mNext = nullptr;
        if (!Policy::Executes(ChannelStep::kRefusalUnderLock) && IsClosed()) {
            return false;
        }
        const MutexLock lock(mInbox.mMutex);
        if (Policy::Executes(ChannelStep::kRefusalUnderLock) && Policy::Reach(mInbox.mIsClosed)) {
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

    // Returns true if there is a result: a node, or null if the channel is closed and empty.
    bool TakeNow(WorkNode*& outNode)
    {
        const MutexLock lock(mOutbox.mMutex);
        if (Policy::Load(mPaused) == kPaused) {
            return false;
        }
        bool isOver = false;
        outNode = Policy::Load(mOutbox.mFirst);
        if (outNode == nullptr) {
            outNode = MoveInboxToOutbox(isOver);
        }
        if (outNode != nullptr) {
            Policy::Store(mOutbox.mFirst, outNode->mNext);
        }
        return outNode != nullptr || isOver;
    }

    // Sets the outbox before it releases the inbox lock: a push that finds the inbox empty must not find the outbox
    // empty too while the nodes are being moved.
    WorkNode* MoveInboxToOutbox(bool& outIsOver)
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

    // Takes no lock: a spinner checks again under the locks.
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
        const unsigned int most = SpinLimit();
        unsigned int turns = 0;
        bool isFound = false;
        while (!isFound && turns != most) {
            Policy::Pause();
            isFound = SeemsToHaveWork();
            ++turns;
        }
        LearnFromSpin(isFound, turns);
        if (Policy::Executes(ChannelStep::kSpinnerEndsFirst)) {
            Policy::Subtract(mIdle, kSpinner);
        }
        return isFound;
    }

    // After many failed spins in a row, spins only occasionally, to detect whether work arrives sooner again.
    unsigned int SpinLimit()
    {
        const SpinHistory& history = Policy::Reach(mSpinHistory);
        if (history.mFailedSpins < kMaxFailedSpins) {
            return history.mTurns;
        }
        return history.mFailedSpins % kSpinsSkipped == 0 ? mSpinTurns : 0;
    }

    // The limit is a moving average of twice the turns that recent successful spins took.
    void LearnFromSpin(bool inIsFound, unsigned int inTurns)
    {
        SpinHistory& history = Policy::Reach(mSpinHistory);
        if (!inIsFound) {
            ++history.mFailedSpins;
            return;
        }
        const unsigned int average = (7 * history.mTurns + 2 * inTurns + kMinTurns) / 8;
        history.mTurns = average < mSpinTurns ? average : mSpinTurns;
        history.mFailedSpins = 0;
    }

    bool BeginSpin()
    {
        const std::uint32_t idle = Policy::Load(mIdle);
        return idle < kSpinner && Policy::CompareAndSet(mIdle, idle, idle + kSpinner);
    }

    void SleepUntilWoken()
    {
        Policy::Add(mIdle, kSleeper);
        const bool mustStay = Policy::Executes(ChannelStep::kSleeperRechecks) && HasWork();
        if (mustStay && ClaimSleepers(1) == 1) {
            return;
        }
        // This thread still counts as a sleeper, or another thread has claimed it: in both cases another thread will
        // wake it.
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

    // Removes up to inMost threads from the count of sleepers. A thread that claims a sleeper must wake it.
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

    void EndPause() TVXCORE_REQUIRES(mOutbox.mMutex)
    {
        if (Policy::Load(mPaused) == kPaused) {
            Policy::Store(mPaused, kRunning);
            Policy::WakeAll(mPaused);
        }
    }

    // Each side's words are on their own cache line, and so are the rarely changed words that both sides read.
    struct alignas(Policy::kLine) Inbox
    {
        typename Policy::Mutex mMutex;
        NodePointer mFirst{nullptr};
        typename Policy::template Guarded<WorkNode*> mLast TVXCORE_GUARDED_BY(mMutex);
        typename Policy::template Guarded<bool> mIsClosed TVXCORE_GUARDED_BY(mMutex);
    };

    struct alignas(Policy::kLine) Outbox
    {
        typename Policy::Mutex mMutex;
        NodePointer mFirst{nullptr};
    };

    struct SpinHistory
    {
        unsigned int mTurns;        // number of turns that a spin may take
        std::uint32_t mFailedSpins; // failed spins since work was last found
    };

    const unsigned int mSpinTurns;
    Inbox mInbox;
    Outbox mOutbox;
    alignas(Policy::kLine) Word mIdle{0}; // the number of sleepers, plus kSpinner while a thread spins
    typename Policy::template Guarded<SpinHistory> mSpinHistory; // only the spinner accesses it
    Word mPaused{kRunning};                                      // changed under the outbox lock
    alignas(Policy::kLine) Word mWakes{0};                       // wakes that claimed sleepers have not consumed yet
};

} // namespace threads
} // namespace tvxcore
