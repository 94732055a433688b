// Runs the shipped rendezvous of a flush under a model checker: a queue with up to two threads, up to two flushing
// threads, and gates with and without one more poll before a sleep.
//
// Extent: every interleaving with up to two preemptions if there is one queue thread or one flusher, and with one if
// there are two of both (with two, the search did not end in four minutes). The argument "deep" raises each of these
// limits by one. After that, 100000 random interleavings with any number of preemptions.
#include <ModelRun.h>

#include <Threads/WorkQueueFlushAlgorithm.h>

#include <cstdint>

namespace {

using ORL::Sync::Step;

constexpr std::uint32_t kUnclaimed = 0xFFFFFFFFu;

/// An atomic value with a copy; reading the copy does not let the checker switch threads.
template <class T>
struct ObservedAtomic : rl::atomic<T>
{
    explicit ObservedAtomic(T inValue) : rl::atomic<T>(inValue), mShadow(inValue) {}
    T mShadow;
};

/// OnOperation is called after every operation on an atomic value, before anything else runs.
class Observer
{
public:
    virtual void OnOperation() = 0;

protected:
    ~Observer() = default;
};
Observer* sObserver = nullptr;

template <class T>
void NotifyObserver(ObservedAtomic<T>& ioTarget, T inValue)
{
    ioTarget.mShadow = inValue;
    if (sObserver != nullptr) {
        sObserver->OnOperation();
    }
}

template <int kSpins, Step... kLeftOut>
struct FlushPolicy : Model::RelacyPolicy<kSpins, kLeftOut...>
{
    using Checked = Model::RelacyPolicy<kSpins, kLeftOut...>;
    using Flag = ObservedAtomic<bool>;
    using Word = ObservedAtomic<std::uint32_t>;

    template <class T>
    static bool CompareAndSet(ObservedAtomic<T>& ioTarget, T inExpected, T inNew)
    {
        const bool isSet = Checked::template CompareAndSet<T>(ioTarget, inExpected, inNew);
        if (isSet) {
            NotifyObserver(ioTarget, inNew);
        }
        return isSet;
    }
    static std::uint32_t Exchange(Word& ioTarget, std::uint32_t inNew)
    {
        const std::uint32_t old = Checked::Exchange(ioTarget, inNew);
        NotifyObserver(ioTarget, inNew);
        return old;
    }
    static std::uint32_t Decrement(Word& ioTarget)
    {
        const std::uint32_t left = Checked::Decrement(ioTarget);
        NotifyObserver(ioTarget, left);
        return left;
    }
};

/// The fields of a gate, with an observable flag.
template <class Policy>
struct Gate
{
    using Algorithm = ORL::Sync::WaitableGateAlgorithm<Policy>;

    void Wait(int inMilliseconds) { RL_ASSERT(Algorithm::Wait(*this, inMilliseconds) == ORL::kSuccess); }
    void Open() { Algorithm::Open(*this); }
    void Close() { Algorithm::Close(*this); }

    typename Policy::Flag mIsOpen{true};
    typename Policy::Mutex mMutex;
    typename Policy::Condition mCondition;
    typename Policy::template Guarded<std::uint32_t> mGeneration;
    typename Policy::template Guarded<std::int32_t> mWaiterCount;
};

/// The fields of a flush.
template <class Policy>
struct Rendezvous
{
    typename Policy::Word mArrivalsLeft{kUnclaimed};
    Gate<Policy> mArrivalGate;
    typename Policy::Word mDeparturesLeft{0};
    Gate<Policy> mDepartureGate;
};

/// The number of times that each state was seen.
struct States
{
    unsigned long long mIdle = 0;
    unsigned long long mClaimed = 0;
    unsigned long long mGathering = 0;
    unsigned long long mDeparting = 0;
    unsigned long long mDepartingAndClaimed = 0;

    bool HasEach() const { return mIdle && mClaimed && mGathering && mDeparting && mDepartingAndClaimed; }
};
States sStates;

/// Starts requests in the order of queueing; a thread takes the next one when it has finished the previous one.
template <class Policy>
class Queue
{
public:
    enum Request : int { kWorkOfFirst, kWorkOfSecond, kItem, kEnd };

    /// inRequests: the total number of requests.
    explicit Queue(unsigned inRequests) : mStillToTake(inRequests) {}

    void Add(Request inRequest)
    {
        const typename Policy::MutexLock lock(mMutex);
        mRequests[mQueued++] = inRequest;
        Policy::NotifyAll(mCondition);
    }

    Request Take()
    {
        typename Policy::MutexLock lock(mMutex);
        while (mStillToTake != 0 && mTaken == mQueued) {
            Policy::SleepOn(mCondition, lock);
        }
        if (mStillToTake == 0) {
            return kEnd;
        }
        if (--mStillToTake == 0) {
            Policy::NotifyAll(mCondition);
        }
        return mRequests[mTaken++];
    }

private:
    typename Policy::Mutex mMutex;
    typename Policy::Condition mCondition;
    unsigned mStillToTake;
    unsigned mTaken = 0;
    unsigned mQueued = 0;
    Request mRequests[6] = {};
};

/// The size of a model: the queue's threads, the flushing threads, and the items of the last flush that the queue
/// refuses.
template <unsigned kQueueThreads, unsigned kFlusherCount, unsigned kRefusedItems = 0>
struct Shape
{
    static constexpr unsigned kThreads = kQueueThreads;
    static constexpr unsigned kFlushers = kFlusherCount;
    static constexpr unsigned kRefused = kRefusedItems;
    static constexpr unsigned kRequests = kFlushers * (kThreads + 1) - kRefused;
};

/// The first threads belong to the queue. Each other thread queues a work item and flushes.
template <class Policy, class Form>
struct Flushers : rl::test_suite<Flushers<Policy, Form>, Form::kThreads + Form::kFlushers>, Observer
{
    using Algorithm = ORL::Sync::WorkQueueFlushAlgorithm<Policy>;
    static constexpr unsigned kThreads = Form::kThreads;

    Rendezvous<Policy> mFlush;
    using Requests = Queue<Policy>;
    Requests mQueue{Form::kRequests};
    rl::var<int> mDone[2];

    void before()
    {
        mDone[0]($) = 0;
        mDone[1]($) = 0;
        sObserver = this;
    }

    void thread(unsigned inIndex)
    {
        if (inIndex < kThreads) {
            RunRequests();
        } else {
            WorkAndFlush(inIndex - kThreads);
        }
    }

    void after()
    {
        sObserver = nullptr;
        RL_ASSERT(IsIdle());
        RL_ASSERT(mFlush.mDeparturesLeft.mShadow == 0);
    }

    void RunRequests()
    {
        for (auto request = mQueue.Take(); request != Requests::kEnd; request = mQueue.Take()) {
            if (request == Requests::kItem) {
                Algorithm::Process(mFlush);
            } else {
                mDone[request]($) = 1;
            }
        }
    }

    void WorkAndFlush(unsigned inFlusher)
    {
        mQueue.Add(inFlusher == 0 ? Requests::kWorkOfFirst : Requests::kWorkOfSecond);
        const unsigned refused = inFlusher + 1 == Form::kFlushers ? Form::kRefused : 0;
        Algorithm::Claim(mFlush, kThreads);
        for (unsigned i = refused; i < kThreads; ++i) {
            mQueue.Add(Requests::kItem);
        }
        for (unsigned i = 0; i < refused; ++i) {
            Algorithm::CountMissingItem(mFlush);
        }
        Algorithm::WaitForAll(mFlush);
        // If the queue refused an item, one of its threads may still be working.
        if (refused == 0) {
            RL_ASSERT(static_cast<int>(mDone[inFlusher]($)) == 1);
        }
    }

    bool IsIdle() const
    {
        return mFlush.mArrivalsLeft.mShadow == kUnclaimed && mFlush.mArrivalGate.mIsOpen.mShadow
               && mFlush.mDepartureGate.mIsOpen.mShadow;
    }

    void OnOperation() override
    {
        const std::uint32_t left = mFlush.mArrivalsLeft.mShadow;
        const bool arrivalIsOpen = mFlush.mArrivalGate.mIsOpen.mShadow;
        const bool departureIsOpen = mFlush.mDepartureGate.mIsOpen.mShadow;
        // While items gather, both gates are closed. An unclaimed record never has only its arrival gate closed.
        if (left < kThreads) {
            RL_ASSERT(!arrivalIsOpen && !departureIsOpen);
        }
        RL_ASSERT(left == kUnclaimed || left <= kThreads);
        RL_ASSERT(!(left == kUnclaimed && !arrivalIsOpen && departureIsOpen));
        sStates.mIdle += IsIdle();
        sStates.mClaimed += left == kThreads && arrivalIsOpen && departureIsOpen;
        sStates.mGathering += left != kUnclaimed && left != 0 && !arrivalIsOpen && !departureIsOpen;
        sStates.mDeparting += left == kUnclaimed && arrivalIsOpen && !departureIsOpen;
        sStates.mDepartingAndClaimed += left == kThreads && arrivalIsOpen && !departureIsOpen;
    }
};

using Sleeping = FlushPolicy<0>;
using Spinning = FlushPolicy<1>; // polls a gate once more before it sleeps; the shipped code polls some hundred times

int Finish(const Model::Run& inRun)
{
    std::printf(
        "%-6s states seen: idle %llu, claimed %llu, gathering %llu, departing %llu, departing and claimed %llu\n",
        sStates.HasEach() ? "ok" : "FAILED", sStates.mIdle, sStates.mClaimed, sStates.mGathering, sStates.mDeparting,
        sStates.mDepartingAndClaimed);
    const int code = inRun.Finish();
    return sStates.HasEach() ? code : 1;
}

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<Flushers<Sleeping, Shape<2, 1>>>("2 threads, 1 flusher", 2);
    run.Exhaust<Flushers<Spinning, Shape<2, 1>>>("the same, with a spin", 2);
    run.Exhaust<Flushers<Sleeping, Shape<1, 2>>>("1 thread, 2 flushers", 2);
    run.Exhaust<Flushers<Spinning, Shape<1, 2>>>("the same, with a spin", 2);
    run.Exhaust<Flushers<Sleeping, Shape<2, 2>>>("2 threads, 2 flushers", 1);
    run.Exhaust<Flushers<Spinning, Shape<2, 2>>>("the same, with a spin", 1);
    run.Exhaust<Flushers<Sleeping, Shape<2, 2, 1>>>("2 and 2, one item refused", 1);
    run.Exhaust<Flushers<Sleeping, Shape<2, 2, 2>>>("2 and 2, both items of one flush refused", 1);
    run.Exhaust<Flushers<Spinning, Shape<2, 2, 2>>>("the same, with a spin", 1);
    const int code = Finish(run); // computed before the mutants add their states
    run.Random<Flushers<Sleeping, Shape<2, 2>>>("2 threads, 2 flushers", 100000);
    run.Random<Flushers<Spinning, Shape<2, 2>>>("the same, with a spin", 100000);
    run.Random<Flushers<Sleeping, Shape<2, 2, 1>>>("2 and 2, one item refused", 100000);
    run.Random<Flushers<Spinning, Shape<2, 2, 1>>>("the same, with a spin", 100000);
    run.FindMutant<Flushers<FlushPolicy<0, Step::kFlushWaitsForPrevious>, Shape<2, 2>>>(
        "the earlier flush is not waited for");
    run.FindMutant<Flushers<FlushPolicy<1, Step::kFlushWaitsForPrevious>, Shape<2, 2>>>("the same, with a spin");
    run.FindMutant<Flushers<FlushPolicy<0, Step::kGateSecondRead>, Shape<2, 2>>>("the gate without its second read");
    run.FindMutant<Flushers<FlushPolicy<0, Step::kFlushYields>, Shape<1, 2>>>("a flush that cannot claim tries on", 1);
    run.FindMutant<Flushers<FlushPolicy<1, Step::kFlushYields>, Shape<1, 2>>>("the same, with a spin", 1);
    return code != 0 ? code : run.Finish();
}
