// Runs the shipped channel from the threads that queue work to the threads of an executor, under a model checker.
#include <ModelRun.h>

#include <Executors/WorkChannel.h>

namespace {

using tvxcore::threads::ChannelStep;
using tvxcore::threads::WorkNode;

/// A word that threads can sleep on. Like the kernel's call, SleepOn compares the word and falls asleep atomically.
class SleepWord
{
public:
    explicit SleepWord(std::uint32_t inValue) : mWord(inValue) {}

    std::uint32_t Load() const { return mWord($).load(rl::mo_acquire); }
    void Store(std::uint32_t inValue) { mWord($).store(inValue, rl::mo_release); }
    bool CompareAndSet(std::uint32_t inExpected, std::uint32_t inNew)
    {
        return mWord($).compare_exchange_strong(inExpected, inNew, rl::mo_seq_cst);
    }
    std::uint32_t Add(std::uint32_t inValue) { return mWord($).fetch_add(inValue, rl::mo_seq_cst); }
    std::uint32_t Subtract(std::uint32_t inValue) { return mWord($).fetch_sub(inValue, rl::mo_seq_cst); }

    void SleepOn(std::uint32_t inExpected)
    {
        Model::MutexScope<Lock> scope(mLock);
        if (Load() == inExpected) {
            mSleepers.Get().wait(mLock.Get(), false, $);
        }
    }
    void WakeOne()
    {
        Model::MutexScope<Lock> scope(mLock);
        mSleepers.Get().notify_one($);
    }
    void WakeAll()
    {
        Model::MutexScope<Lock> scope(mLock);
        mSleepers.Get().notify_all($);
    }

private:
    using Lock = Model::Mutex<rl::mutex>;

    mutable rl::atomic<std::uint32_t> mWord;
    Lock mLock;
    Model::Condition mSleepers;
};

template <ChannelStep... kLeftOut>
struct ChannelPolicy
{
    static constexpr bool Executes(ChannelStep inStep) { return ((inStep != kLeftOut) && ...); }
    static constexpr std::size_t kLine = 16;

    template <class T>
    using Atomic = std::conditional_t<std::is_pointer_v<T>, rl::atomic<T>, SleepWord>;

    static WorkNode* Load(const rl::atomic<WorkNode*>& inTarget)
    {
        return const_cast<rl::atomic<WorkNode*>&>(inTarget)($).load(rl::mo_acquire);
    }
    static void Store(rl::atomic<WorkNode*>& outTarget, WorkNode* inValue)
    {
        outTarget($).store(inValue, rl::mo_release);
    }
    static std::uint32_t Load(const SleepWord& inWord) { return inWord.Load(); }
    static void Store(SleepWord& outWord, std::uint32_t inValue) { outWord.Store(inValue); }
    static bool CompareAndSet(SleepWord& ioWord, std::uint32_t inExpected, std::uint32_t inNew)
    {
        return ioWord.CompareAndSet(inExpected, inNew);
    }
    static std::uint32_t Add(SleepWord& ioWord, std::uint32_t inValue) { return ioWord.Add(inValue); }
    static std::uint32_t Subtract(SleepWord& ioWord, std::uint32_t inValue) { return ioWord.Subtract(inValue); }

    template <class T>
    using Guarded = Model::Guarded<T>;
    template <class T>
    static T& Reach(Guarded<T>& ioValue)
    {
        ioValue.mAccess.Write();
        return ioValue.Value();
    }

    using Mutex = Model::Mutex<rl::mutex>;
    using MutexLock = Model::MutexScope<Mutex>;

    static void SleepOn(SleepWord& ioWord, std::uint32_t inExpected) { ioWord.SleepOn(inExpected); }
    static void WakeOne(SleepWord& ioWord) { ioWord.WakeOne(); }
    static void WakeAll(SleepWord& ioWord) { ioWord.WakeAll(); }

    static void Pause() { rl::yield(1, $); }
};

/// Common parts of the models: a channel, and nodes that record the number of times that they were taken.
template <class Policy, int kSpins>
struct Channel : tvxcore::threads::WorkChannel<Policy>
{
    Channel() : tvxcore::threads::WorkChannel<Policy>(kSpins) {}
};

struct Node : WorkNode
{
    Node() { mTaken($) = 0; }
    rl::var<int> mTaken;
};

/// Two work items that wait for each other are pushed; two threads dequeue. Both items must run at the same time,
/// regardless of which thread sleeps or spins. The channel closes only after both items have started, so that closing
/// cannot wake a thread that a push failed to wake. With kSleeps one taker sleeps before any other thread starts.
template <class Policy, int kSpins, int kPushers, bool kSleeps = false>
struct MutuallyWaitingWork : rl::test_suite<MutuallyWaitingWork<Policy, kSpins, kPushers, kSleeps>, 2 + kPushers>
{
    Channel<Policy, kSpins> mChannel;
    Node mNodes[2];
    rl::atomic<int> mArrived{0};

    void thread(unsigned inIndex)
    {
        while (kSleeps && inIndex != 0 && mChannel.CountSleepers() == 0 && mArrived($).load(rl::mo_relaxed) == 0) {
            rl::yield(1, $);
        }
        if (inIndex < 2) {
            while (WorkNode* const node = mChannel.Take()) {
                static_cast<Node*>(node)->mTaken($) += 1;
                mArrived($).fetch_add(1, rl::mo_acq_rel);
                WaitForBoth();
            }
            return;
        }
        if (kPushers == 2) {
            RL_ASSERT(mChannel.Push(mNodes[inIndex - 2]));
        } else {
            RL_ASSERT(mChannel.Push(mNodes[0]));
            RL_ASSERT(mChannel.Push(mNodes[1]));
        }
        if (inIndex == 2) {
            WaitForBoth();
            mChannel.Close();
        }
    }
    void WaitForBoth()
    {
        while (mArrived($).load(rl::mo_acquire) != 2) {
            rl::yield(1, $);
        }
    }
    void after()
    {
        RL_ASSERT(mNodes[0].mTaken($) == 1 && mNodes[1].mTaken($) == 1);
        RL_ASSERT(mChannel.CountSleepers() == 0);
    }
};

/// One thread pushes and another closes. Accepted work is taken exactly once, refused work never.
template <class Policy, int kSpins>
struct PushAgainstClose : rl::test_suite<PushAgainstClose<Policy, kSpins>, 4>
{
    Channel<Policy, kSpins> mChannel;
    Node mNodes[2];
    bool mIsAccepted[2] = {};

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            mIsAccepted[0] = mChannel.Push(mNodes[0]);
            mIsAccepted[1] = mChannel.Push(mNodes[1]);
        } else if (inIndex == 1) {
            mChannel.Close();
        } else {
            while (WorkNode* const node = mChannel.Take()) {
                static_cast<Node*>(node)->mTaken($) += 1;
            }
        }
    }
    void after()
    {
        RL_ASSERT(mNodes[0].mTaken($) == (mIsAccepted[0] ? 1 : 0));
        RL_ASSERT(mNodes[1].mTaken($) == (mIsAccepted[1] ? 1 : 0));
        RL_ASSERT(mIsAccepted[0] || !mIsAccepted[1]);
        RL_ASSERT(mChannel.CountSleepers() == 0);
    }
};

/// Work pushed during a pause is taken after it, in order, and never during it.
template <class Policy, int kSpins>
struct PauseBlocksWork : rl::test_suite<PauseBlocksWork<Policy, kSpins>, 3>
{
    Channel<Policy, kSpins> mChannel;
    Node mNodes[2];
    rl::atomic<int> mResumed{0};

    void before() { mChannel.Pause(); }

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            RL_ASSERT(mChannel.Push(mNodes[0]));
            RL_ASSERT(mChannel.Push(mNodes[1]));
            mResumed($).store(1, rl::mo_relaxed);
            mChannel.Resume();
        } else if (inIndex == 1) {
            for (Node& node : mNodes) {
                RL_ASSERT(mChannel.Take() == &node);
                RL_ASSERT(mResumed($).load(rl::mo_relaxed) == 1);
                node.mTaken($) += 1;
            }
        } else {
            mChannel.BlockWhilePaused();
            RL_ASSERT(mResumed($).load(rl::mo_relaxed) == 1);
        }
    }
    void after() { RL_ASSERT(mNodes[0].mTaken($) == 1 && mNodes[1].mTaken($) == 1); }
};

using Ships = ChannelPolicy<>;

template <ChannelStep kStep>
using Without = ChannelPolicy<kStep>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<MutuallyWaitingWork<Ships, 0, 1>>("2 takers, work that meets", 1);
    run.Exhaust<MutuallyWaitingWork<Ships, 1, 1>>("the same, with a spin", 1);
    run.Exhaust<MutuallyWaitingWork<Ships, 2, 1, true>>("one sleeps, one spins", 1);
    run.Exhaust<PushAgainstClose<Ships, 0>>("push against close", 1);
    run.Exhaust<PauseBlocksWork<Ships, 0>>("push in a pause", 2);
    run.Random<MutuallyWaitingWork<Ships, 0, 1>>("2 takers, work that meets", 50000);
    run.Random<MutuallyWaitingWork<Ships, 1, 1>>("the same, with a spin", 50000);
    run.Random<MutuallyWaitingWork<Ships, 2, 2>>("2 pushers, 2 takers that spin", 50000);
    run.Random<MutuallyWaitingWork<Ships, 2, 2, true>>("2 pushers, one sleeps, one spins", 100000);
    run.Random<PushAgainstClose<Ships, 0>>("push against close", 50000);
    run.Random<PushAgainstClose<Ships, 1>>("the same, with a spin", 50000);
    run.Random<PauseBlocksWork<Ships, 1>>("push in a pause, with a spin", 50000);
    run.FindMutant<MutuallyWaitingWork<Without<ChannelStep::kSleeperRechecks>, 0, 1>>("a sleeper does not look again");
    run.FindMutant<MutuallyWaitingWork<Without<ChannelStep::kSpinnerEndsFirst>, 1, 1>>("a spinner counts on");
    run.FindMutant<MutuallyWaitingWork<Without<ChannelStep::kOnlyItemNeedsNoWake>, 2, 2, true>>(
        "a spinner is trusted with all");
    run.FindMutant<PauseBlocksWork<Without<ChannelStep::kResumeWakes>, 0>>("resume wakes nobody");
    run.FindMutant<PushAgainstClose<Without<ChannelStep::kCloseWakes>, 0>>("close wakes nobody");
    run.FindMutant<PushAgainstClose<Without<ChannelStep::kRefusalUnderLock>, 0>>("refusal outside of the lock");
    return run.Finish();
}
