// Runs the shipped list of reads in flight, with the shipped gate and gate pool, under a model checker, while threads
// remove reads and wait for them.
#include <ModelRun.h>

namespace {

using ORL::Sync::Step;

struct Request
{
    Request() { mFinished($) = 0; }
    rl::var<int> mFinished; // written by the callback of the read
};

template <class Policy>
using List = ORL::AsyncReadRequestBusyList<Request, Policy>;

template <class Policy>
using Pool = ORL::Sync::WaitableGatePoolAlgorithm<Policy>;

template <class Policy>
void Finish(List<Policy>& ioList, Request& ioRequest)
{
    ioRequest.mFinished($) = 1;
    ioList.Remove(&ioRequest);
}

/// Two reads in flight, each finished by a separate thread; two threads wait for both.
template <class Policy>
struct TwoWaitersShareOneGate : rl::test_suite<TwoWaitersShareOneGate<Policy>, 4>
{
    Pool<Policy> mPool;
    List<Policy> mList;
    Request mRequests[2];

    void before()
    {
        mList.Add(&mRequests[0]);
        mList.Add(&mRequests[1]);
    }
    void thread(unsigned inIndex)
    {
        if (inIndex < 2) {
            Finish(mList, mRequests[inIndex]);
        } else {
            mList.WaitForPendingReads();
            RL_ASSERT(mRequests[0].mFinished($) == 1);
            RL_ASSERT(mRequests[1].mFinished($) == 1);
        }
    }
    void after()
    {
        RL_ASSERT(mList.CountRequests() == 0);
        RL_ASSERT(mList.CountWaiters() == 0);
        RL_ASSERT(mList.GetDrainedGate() == nullptr);
        RL_ASSERT(mPool.CountIdleGates() <= 1);
    }
};

/// Two lists, each with a read and a waiter, share one pool. A gate returned by one list may go to the other, and the
/// first list must not release the second list's waiter.
template <class Policy>
struct TwoListsOnePool : rl::test_suite<TwoListsOnePool<Policy>, 4>
{
    Pool<Policy> mPool;
    List<Policy> mLists[2];
    Request mRequests[2];

    void before()
    {
        mLists[0].Add(&mRequests[0]);
        mLists[1].Add(&mRequests[1]);
    }
    void thread(unsigned inIndex)
    {
        if (inIndex < 2) {
            Finish(mLists[inIndex], mRequests[inIndex]);
        } else {
            mLists[inIndex - 2].WaitForPendingReads();
            RL_ASSERT(mRequests[inIndex - 2].mFinished($) == 1);
        }
    }
    void after()
    {
        RL_ASSERT(mLists[0].GetDrainedGate() == nullptr);
        RL_ASSERT(mLists[1].GetDrainedGate() == nullptr);
    }
};

/// One thread queues a read, waits, queues another and waits again, like a reader that is closed and reopened.
template <class Policy>
struct WaitTwice : rl::test_suite<WaitTwice<Policy>, 2>
{
    Pool<Policy> mPool;
    List<Policy> mList;
    Request mRequests[2];
    rl::atomic<int> mQueued{0};

    void thread(unsigned inIndex)
    {
        for (int round = 0; round < 2; ++round) {
            if (inIndex == 0) {
                mList.Add(&mRequests[round]);
                mQueued($).store(round + 1, rl::mo_release);
                mList.WaitForPendingReads();
                RL_ASSERT(mRequests[round].mFinished($) == 1);
            } else {
                while (mQueued($).load(rl::mo_acquire) <= round) {
                    rl::yield(1, $);
                }
                Finish(mList, mRequests[round]);
            }
        }
    }
    void after()
    {
        RL_ASSERT(mList.CountWaiters() == 0);
        RL_ASSERT(mPool.CountIdleGates() <= 1);
    }
};

using Ships = Model::RelacyPolicy<0>;
using Spins = Model::RelacyPolicy<1>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<TwoWaitersShareOneGate<Ships>>("2 removers, 2 waiters", 2);
    run.Exhaust<TwoListsOnePool<Ships>>("2 lists, 1 pool of gates", 1);
    run.Exhaust<WaitTwice<Ships>>("queue and wait, twice", 3);
    run.Random<TwoWaitersShareOneGate<Ships>>("2 removers, 2 waiters", 100000);
    run.Random<TwoWaitersShareOneGate<Spins>>("the same, with a spin", 100000);
    run.Random<TwoListsOnePool<Ships>>("2 lists, 1 pool of gates", 100000);
    run.Random<WaitTwice<Ships>>("queue and wait, twice", 100000);
    run.FindMutant<TwoWaitersShareOneGate<Model::RelacyPolicy<0, Step::kBusyListOpensGate>>>(
        "the last removal opens no gate");
    run.FindMutant<TwoWaitersShareOneGate<Model::RelacyPolicy<0, Step::kBusyListCountsWaiters>>>(
        "the first waiter gives the gate back");
    run.FindMutant<TwoWaitersShareOneGate<Model::RelacyPolicy<0, Step::kGateSecondRead>>>(
        "the gate without its second read");
    return run.Finish();
}
