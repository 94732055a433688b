// Question: what does waiting for a queue to drain cost? The answer decides whether a host can flush once per frame.
//
// The peers guarantee less. The pool's tasks are counted, one per thread, but nothing ensures that each thread takes
// one; the barrier's threads only arrive at the barrier.
#include <Harness.h>

#include <ORLThreadedWorkQueueFlush.h>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/thread/barrier.hpp>

#include <condition_variable>
#include <memory>
#include <mutex>

namespace {

using ORL::InterfaceRef;
using ORL::IThreadedQueueRequest;

std::atomic<std::uint64_t> sWork{0};

class ShortRequest : public ORL::UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    void Process() override { sWork.fetch_add(1, std::memory_order_relaxed); }
};

class PinsItsThread : public ORL::UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    void Process() override { Bench::PinThread(1); }
};

class OurQueue
{
public:
    explicit OurQueue(int inThreads)
        : mQueue(new ORL::ThreadedWorkQueue), mFlush(new ORL::ThreadedWorkQueueFlush), mRequest(new ShortRequest)
    {
        mQueue->Initialize(ORL::ThreadPriorities::kNormal, inThreads, ORL::ConstString("ours"),
                           ORL::ConstString("bench"));
        mFlush->Init(mQueue);
        if (inThreads == 1) {
            mQueue->QueueRequest(new PinsItsThread);
        }
    }
    ~OurQueue() { mQueue->Stop(); }
    OurQueue(const OurQueue&) = delete;
    OurQueue& operator=(const OurQueue&) = delete;

    void Drain(unsigned inRequests)
    {
        while (inRequests-- != 0) {
            mQueue->QueueRequest(mRequest);
        }
        mFlush->Flush();
    }

private:
    InterfaceRef<ORL::ThreadedWorkQueue> mQueue;
    InterfaceRef<ORL::ThreadedWorkQueueFlush> mFlush;
    ORL::ThreadedWorkQueue::Request mRequest;
};

class AsioPool
{
public:
    explicit AsioPool(int inThreads) : mThreads(inThreads), mPool(static_cast<std::size_t>(inThreads))
    {
        if (inThreads == 1) {
            boost::asio::post(mPool, [] { Bench::PinThread(1); });
        }
    }
    ~AsioPool() { mPool.join(); }
    AsioPool(const AsioPool&) = delete;
    AsioPool& operator=(const AsioPool&) = delete;

    void Drain(unsigned inRequests)
    {
        while (inRequests-- != 0) {
            boost::asio::post(mPool, [] { sWork.fetch_add(1, std::memory_order_relaxed); });
        }
        mLeft = mThreads;
        for (int i = 0; i < mThreads; ++i) {
            boost::asio::post(mPool, [this] { CountDown(); });
        }
        std::unique_lock<std::mutex> lock(mMutex);
        mDone.wait(lock, [this] { return mLeft == 0; });
    }

private:
    void CountDown()
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (--mLeft == 0) {
            mDone.notify_one();
        }
    }

    const int mThreads;
    std::mutex mMutex;
    std::condition_variable mDone;
    int mLeft = 0; // written without the lock only while there are no tasks
    boost::asio::thread_pool mPool;
};

// Threads that meet the caller at a barrier, repeatedly.
class BarrierThreads
{
public:
    explicit BarrierThreads(int inThreads) : mBarrier(static_cast<unsigned>(inThreads) + 1)
    {
        for (int i = 0; i < inThreads; ++i) {
            mThreads.emplace_back([this, inThreads] {
                if (inThreads == 1) {
                    Bench::PinThread(1);
                }
                while (!mIsOver.load()) {
                    mBarrier.wait();
                }
            });
        }
    }
    ~BarrierThreads()
    {
        mIsOver.store(true);
        mBarrier.wait();
        for (std::thread& thread : mThreads) {
            thread.join();
        }
    }
    BarrierThreads(const BarrierThreads&) = delete;
    BarrierThreads& operator=(const BarrierThreads&) = delete;

    void Wait() { mBarrier.wait(); }

private:
    boost::barrier mBarrier;
    std::atomic<bool> mIsOver{false};
    std::vector<std::thread> mThreads;
};

std::string Threads(int inThreads)
{
    return std::to_string(inThreads) + (inThreads == 1 ? " thread" : " threads");
}

// The rivals with inThreads threads each, constructed before the harness pins the caller to processor 0. A single
// thread runs on processor 1; two threads may use both.
struct Rivals
{
    explicit Rivals(int inThreads) : mThreads(inThreads), mOurs(inThreads), mAsio(inThreads), mBarrier(inThreads) {}

    const int mThreads;
    OurQueue mOurs;
    AsioPool mAsio;
    BarrierThreads mBarrier;
};

void CompareIdle(Rivals& ioRivals)
{
    OurQueue& ours = ioRivals.mOurs;
    AsioPool& asio = ioRivals.mAsio;
    BarrierThreads& barrierThreads = ioRivals.mBarrier;
    Bench::Group("flush an idle queue of " + Threads(ioRivals.mThreads))
        .Ours("ThreadedWorkQueueFlush", Bench::AtMost(1.2, "boost::asio::thread_pool"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      ours.Drain(0);
                  }
              })
        .Ours("ThreadedWorkQueueFlush (again)", Bench::AtMost(1.2, "boost::barrier"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      ours.Drain(0);
                  }
              })
        .Peer("boost::asio::thread_pool",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      asio.Drain(0);
                  }
              })
        .Peer("boost::barrier",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      barrierThreads.Wait();
                  }
              })
        .Run();
}

void CompareBusy(Rivals& ioRivals)
{
    constexpr unsigned kRequests = 1000;
    OurQueue& ours = ioRivals.mOurs;
    AsioPool& asio = ioRivals.mAsio;
    Bench::Group("1000 short requests and a flush, queue of " + Threads(ioRivals.mThreads))
        .Ours("ThreadedWorkQueueFlush", Bench::AtMost(1.2, "boost::asio::thread_pool"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      ours.Drain(kRequests);
                  }
              })
        .Peer("boost::asio::thread_pool",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      asio.Drain(kRequests);
                  }
              })
        .Run();
}

// Several threads flush through one object, which serialises them; this must not delay the queue's threads.
void FlushByMany(OurQueue& ioQueue, unsigned inFlushers, std::uint64_t inFlushes)
{
    std::vector<std::thread> flushers;
    for (unsigned i = 0; i < inFlushers; ++i) {
        flushers.emplace_back([&ioQueue, share = (inFlushes + i) / inFlushers] {
            Bench::UseAllProcessors();
            for (std::uint64_t n = share; n != 0; --n) {
                ioQueue.Drain(0);
            }
        });
    }
    for (std::thread& flusher : flushers) {
        flusher.join();
    }
}

void CompareFlushers(OurQueue& ioQueue)
{
    Bench::Group("one object flushed by many, queue of 2 threads")
        .Ours("8 flushers", Bench::AtMost(2, "1 flusher"), [&](std::uint64_t n) { FlushByMany(ioQueue, 8, n); })
        .Peer("1 flusher", [&](std::uint64_t n) { FlushByMany(ioQueue, 1, n); })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    Rivals one(1);
    Rivals two(2);
    CompareIdle(one);
    CompareIdle(two);
    CompareBusy(one);
    CompareBusy(two);
    CompareFlushers(two.mOurs);
    return Bench::Finish();
}
