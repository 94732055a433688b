// Question: does passing small tasks to threads cost less with this queue than with common thread pools?
#include <Harness.h>

#include <ORLThreadedWorkQueue.h>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

namespace {

using ORL::InterfaceRef;
using ORL::IThreadedQueueRequest;
using ORL::ThreadedWorkQueue;
using ORL::UnknownImpl;

// Counts the finished work items, for the library and for the peers; the caller spins on the count.
class alignas(64) Counter
{
public:
    void Add() { mCount.fetch_add(1, std::memory_order_release); }

    void WaitFor(std::uint64_t inCount) const
    {
        while (mCount.load(std::memory_order_acquire) != inCount) {
            __builtin_ia32_pause();
        }
    }

private:
    std::atomic<std::uint64_t> mCount{0};
};

// A work item for the peers: empty, virtual and counted, like a request.
class Task
{
public:
    explicit Task(Counter& inDone) : mDone(inDone) {}
    virtual ~Task() = default;
    virtual void Process() { mDone.Add(); }

    friend void intrusive_ptr_add_ref(Task* inTask) { inTask->mReferences.fetch_add(1); }
    friend void intrusive_ptr_release(Task* inTask)
    {
        if (inTask->mReferences.fetch_sub(1) == 1) {
            delete inTask;
        }
    }

private:
    std::atomic<int> mReferences{0};
    Counter& mDone;
};

class OurPool
{
public:
    explicit OurPool(int inThreads) : mQueue(new ThreadedWorkQueue), mRequest(new Empty(mDone))
    {
        mQueue->Initialize(ORL::ThreadPriorities::kNormal, inThreads, ORL::ConstString("ours"),
                           ORL::ConstString("bench"));
    }
    ~OurPool() { mQueue->Stop(); }

    void Submit() { mQueue->QueueRequest(mRequest); }
    void Run(const std::function<void()>& inFunction) { mQueue->QueueRequest(new Function(inFunction)); }

    Counter mDone;

private:
    class Empty : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
    {
    public:
        explicit Empty(Counter& inDone) : mCounter(inDone) {}
        void Process() override { mCounter.Add(); }

    private:
        Counter& mCounter;
    };

    class Function : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
    {
    public:
        explicit Function(const std::function<void()>& inFunction) : mFunction(inFunction) {}
        void Process() override { mFunction(); }

    private:
        std::function<void()> mFunction;
    };

    InterfaceRef<ThreadedWorkQueue> mQueue;
    ThreadedWorkQueue::Request mRequest;
};

class AsioPool
{
public:
    explicit AsioPool(int inThreads) : mTask(new Task(mDone)), mPool(static_cast<std::size_t>(inThreads)) {}
    ~AsioPool() { mPool.join(); }

    void Submit()
    {
        boost::asio::post(mPool, [task = mTask] { task->Process(); });
    }
    void Run(const std::function<void()>& inFunction) { boost::asio::post(mPool, inFunction); }

    Counter mDone;

private:
    boost::intrusive_ptr<Task> mTask;
    boost::asio::thread_pool mPool;
};

// The caller has no slot in the arena, so workers run all tasks.
class TbbPool
{
public:
    explicit TbbPool(int inThreads) : mTask(new Task(mDone)), mArena(inThreads, 0) {}

    void Submit()
    {
        mArena.enqueue([task = mTask] { task->Process(); });
    }
    void Run(const std::function<void()>& inFunction) { mArena.enqueue(inFunction); }

    Counter mDone;

private:
    boost::intrusive_ptr<Task> mTask;
    tbb::task_arena mArena;
};

// While an instance exists, keeps the single thread of a pool asleep.
template <class Pool>
class BlockedThread
{
public:
    explicit BlockedThread(Pool& ioPool)
    {
        ioPool.Run([this] {
            std::unique_lock<std::mutex> lock(mMutex);
            mIsHeld = true;
            mChanged.notify_all();
            mChanged.wait(lock, [this] { return mIsReleased; });
            mIsHeld = false;
            mChanged.notify_all();
        });
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mIsHeld; });
    }

    ~BlockedThread()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mIsReleased = true;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return !mIsHeld; });
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsHeld = false;
    bool mIsReleased = false;
};

// A pool and the number of items queued to it.
template <class Pool>
class Rival
{
public:
    // A single thread is pinned to processor 1, because the caller is on processor 0. Two threads may use both.
    explicit Rival(int inThreads) : mPool(inThreads)
    {
        if (inThreads == 1) {
            mPool.Run([] { Bench::PinThread(1); });
        }
    }

    void Burst(std::uint64_t inCount)
    {
        Submit(inCount);
        mPool.mDone.WaitFor(mSubmitted);
    }

    void OneByOne(std::uint64_t inCount)
    {
        while (inCount-- != 0) {
            Burst(1);
        }
    }

    double SubmitAlone(std::uint64_t inCount)
    {
        double spent = 0;
        {
            const BlockedThread<Pool> blocked(mPool);
            const double start = Bench::NowInNanoseconds();
            Submit(inCount);
            spent = Bench::NowInNanoseconds() - start;
        }
        mPool.mDone.WaitFor(mSubmitted);
        return spent / static_cast<double>(inCount);
    }

private:
    void Submit(std::uint64_t inCount)
    {
        mSubmitted += inCount;
        while (inCount-- != 0) {
            mPool.Submit();
        }
    }

    Pool mPool;
    std::uint64_t mSubmitted = 0;
};

// The three rivals with inThreads threads each, constructed before the harness pins the caller to a processor.
struct Rivals
{
    explicit Rivals(int inThreads) : mOurs(inThreads), mAsio(inThreads), mTbb(inThreads) {}

    template <class Body>
    void Run(Bench::Group inGroup, double inGoal, Body inBody)
    {
        inGroup.Ours("ThreadedWorkQueue", Bench::AtMost(inGoal), [&](std::uint64_t n) { return inBody(mOurs, n); })
            .Peer("boost::asio::thread_pool", [&](std::uint64_t n) { return inBody(mAsio, n); })
            .Peer("tbb::task_arena", [&](std::uint64_t n) { return inBody(mTbb, n); })
            .Run();
    }

    Rival<OurPool> mOurs;
    Rival<AsioPool> mAsio;
    Rival<TbbPool> mTbb;
};

constexpr std::uint64_t kBurst = 1'000'000;

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    // Allows two workers in addition to the caller, although there may be only two processors.
    const tbb::global_control parallelism(tbb::global_control::max_allowed_parallelism, 3);
    Rivals one(1);
    Rivals two(2);
    const std::uint64_t burst = Bench::IsQuick() ? kBurst / 100 : kBurst;

    one.Run(Bench::Group("work queue, burst, 1 producer to 1 thread").Operations(burst), 0.9,
            [](auto& ioRival, std::uint64_t n) { ioRival.Burst(n); });
    two.Run(Bench::Group("work queue, burst, 1 producer to 2 threads").Operations(burst), 0.9,
            [](auto& ioRival, std::uint64_t n) { ioRival.Burst(n); });
    one.Run(Bench::Group("work queue, QueueRequest alone, thread held").Operations(burst / 10), 1.5,
            [](auto& ioRival, std::uint64_t n) { return ioRival.SubmitAlone(n); });
    one.Run(Bench::Group("work queue, submit one to an idle queue and wait for it"), 1.0,
            [](auto& ioRival, std::uint64_t n) { ioRival.OneByOne(n); });
    return Bench::Finish();
}
