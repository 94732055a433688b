// Gates and waitable objects compared with what a host would use instead. Question: is an open gate as cheap as its one
// atomic operation, and does it wake a sleeping thread as fast as a condition variable?
#include <ORLEvent.h>
#include <ORLWaitableGate.h>

#include <Harness.h>

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <semaphore.h>

namespace {

/// A ping-pong between two threads, with one gate or condition variable for each direction.
template <class Channel>
struct PingPong
{
    Channel mForward;
    Channel mBackward;

    void Play(std::uint64_t inRounds, unsigned inThread)
    {
        Channel& mine = inThread == 0 ? mBackward : mForward;
        Channel& theirs = inThread == 0 ? mForward : mBackward;
        while (inRounds-- != 0) {
            if (inThread == 0) {
                theirs.Signal();
                mine.Wait();
            } else {
                mine.Wait();
                theirs.Signal();
            }
        }
    }
};

struct GateChannel
{
    ORL::WaitableGate mGate;
    void Signal() { mGate.Open(); }
    void Wait()
    {
        mGate.Wait(-1);
        mGate.Close();
    }
};

struct ConditionChannel
{
    boost::mutex mMutex;
    boost::condition_variable mCondition;
    bool mIsOpen = false;
    void Signal()
    {
        {
            boost::unique_lock<boost::mutex> lock(mMutex);
            mIsOpen = true;
        }
        mCondition.notify_all(); // notifies outside the lock, which is faster
    }
    void Wait()
    {
        boost::unique_lock<boost::mutex> lock(mMutex);
        while (!mIsOpen) {
            mCondition.wait(lock);
        }
        mIsOpen = false;
    }
};

struct EventChannel
{
    ORL::WaitableObject mEvent;
    void Signal() { mEvent.Signal(); }
    void Wait() { mEvent.WaitForSignal(-1); }
};

struct SemaphoreChannel
{
    sem_t mSemaphore;
    SemaphoreChannel() { ::sem_init(&mSemaphore, 0, 0); }
    ~SemaphoreChannel() { ::sem_destroy(&mSemaphore); }
    void Signal() { ::sem_post(&mSemaphore); }
    void Wait() { ::sem_wait(&mSemaphore); }
};

/// The gate that a host would build without the pool.
struct OwnGate
{
    std::atomic<bool> mIsOpen{false};
    boost::mutex mMutex;
    boost::condition_variable mCondition;
};

void OpenGates()
{
    ORL::WaitableGate gate;
    gate.Open();
    std::atomic<std::uint32_t> word{0};
    const auto exchange = [&](std::uint64_t n) {
        while (n-- != 0) {
            std::uint32_t expected = 1;
            Bench::DoNotOptimize(word.compare_exchange_strong(expected, 2));
        }
    };
    Bench::Group("gate: Wait at an open gate")
        .Ours("WaitableGate::Wait(-1)", Bench::AtMost(2.0),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      Bench::DoNotOptimize(gate.Wait(-1));
                  }
              })
        .Peer("one locked compare-and-exchange", exchange)
        .Run();
    Bench::Group("gate: Open of an open gate")
        .Ours("WaitableGate::Open", Bench::AtMost(2.0),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      gate.Open();
                  }
              })
        .Peer("one locked compare-and-exchange", exchange)
        .Run();
}

void SleepersWoken()
{
    PingPong<GateChannel> gates;
    PingPong<ConditionChannel> conditions;
    Bench::Group("gate: a sleeper woken, ping-pong of two, 2 processors")
        .Threads(2)
        .Ours("WaitableGate", Bench::AtMost(1.05), [&](std::uint64_t n, unsigned thread) { gates.Play(n, thread); })
        .Peer("boost::condition_variable", [&](std::uint64_t n, unsigned thread) { conditions.Play(n, thread); })
        .Run();
    PingPong<EventChannel> events;
    PingPong<SemaphoreChannel> semaphores;
    Bench::Group("waitable object: a sleeper woken, ping-pong of two, 2 processors")
        .Threads(2)
        .Ours("WaitableObject", Bench::AtMost(1.1), [&](std::uint64_t n, unsigned thread) { events.Play(n, thread); })
        .Peer("sem_t", [&](std::uint64_t n, unsigned thread) { semaphores.Play(n, thread); })
        .Run();
}

void NobodyWaiting()
{
    EventChannel event;
    SemaphoreChannel semaphore;
    Bench::Group("waitable object: signal and wait with nobody waiting")
        .Ours("WaitableObject", Bench::AtMost(1.1),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      event.Signal();
                      event.Wait();
                  }
              })
        .Peer("sem_t",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      semaphore.Signal();
                      semaphore.Wait();
                  }
              })
        .Run();
}

// No goal: if the heap returns memory quickly, a new gate costs less than the pool's lock and checks. The pool
// avoids constructing a mutex and a condition variable where that needs system calls, and moving memory between
// threads.
void PooledGates()
{
    Bench::Group("gate pool: take, open and give back a gate")
        .Ours("WaitableGatePool", Bench::AtMost(0),
              [](std::uint64_t n) {
                  while (n-- != 0) {
                      ORL::WaitableGate* const gate = ORL::WaitableGatePool::RetrieveGate();
                      gate->Open();
                      ORL::WaitableGatePool::ReturnGate(gate);
                  }
              })
        .Peer("new and delete of flag, boost::mutex and condition",
              [](std::uint64_t n) {
                  while (n-- != 0) {
                      const auto own = std::make_unique<OwnGate>();
                      own->mIsOpen.exchange(true);
                      Bench::DoNotOptimize(own.get());
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    OpenGates();
    SleepersWoken();
    NobodyWaiting();
    PooledGates();
    return Bench::Finish();
}
