// Question: what does CriticalSection cost compared with the system's lock: uncontended, recursive, and contended?
#include <Harness.h>

#include <ORLCriticalSection.h>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/recursive_mutex.hpp>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace {

void Work(int inTurns)
{
    for (int turn = 0; turn < inTurns; ++turn) {
        Bench::DoNotOptimize(turn);
    }
}

template <class Lock, class Unlock>
auto Pairs(Lock inLock, Unlock inUnlock, int inTurnsInside = 0, int inTurnsOutside = 0)
{
    return [=](std::uint64_t inCount, unsigned) {
        while (inCount-- != 0) {
            inLock();
            Work(inTurnsInside);
            inUnlock();
            Work(inTurnsOutside);
        }
    };
}

struct Rivals
{
    ORL::CriticalSection mOurs;
    std::recursive_mutex mStandard;
    boost::recursive_mutex mBoost;

    void Add(Bench::Group& ioGroup, double inGoal, int inTurnsInside = 0, int inTurnsOutside = 0)
    {
        ioGroup.Ours("CriticalSection", Bench::AtMost(inGoal, "std::recursive_mutex"),
                     Pairs([this] { mOurs.Lock(); }, [this] { mOurs.Unlock(); }, inTurnsInside, inTurnsOutside));
        ioGroup.Peer("std::recursive_mutex", Pairs([this] { mStandard.lock(); }, [this] { mStandard.unlock(); },
                                                   inTurnsInside, inTurnsOutside));
        ioGroup.Peer("boost::recursive_mutex",
                     Pairs([this] { mBoost.lock(); }, [this] { mBoost.unlock(); }, inTurnsInside, inTurnsOutside));
    }
};

void Uncontended()
{
    Rivals rivals;
    Bench::Group group("lock and unlock, uncontended");
    rivals.Add(group, 0.85);
    group.Run();
}

void LockRecursively()
{
    Rivals rivals;
    const ORL::CriticalSectionLock ours(rivals.mOurs);
    const std::lock_guard<std::recursive_mutex> standard(rivals.mStandard);
    const boost::lock_guard<boost::recursive_mutex> boosts(rivals.mBoost);
    Bench::Group group("lock and unlock, taken again by its holder");
    rivals.Add(group, 0.3);
    group.Run();
}

void TwoThreads(int inTurnsInside, int inTurnsOutside)
{
    Rivals rivals;
    Bench::Group group("lock and unlock, 2 threads, " + std::to_string(inTurnsInside) + " turns inside, "
                       + std::to_string(inTurnsOutside) + " outside");
    // A fixed count, because a preempted thread must not shorten the rounds.
    group.Threads(2).Repetitions(21).Operations(200000);
    rivals.Add(group, 1.1, inTurnsInside, inTurnsOutside);
    group.Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    // The C library omits atomic operations until a process starts its first thread; hosts have many threads.
    std::thread([] {}).join();
    Uncontended();
    LockRecursively();
    TwoThreads(0, 0);
    TwoThreads(50, 200);
    TwoThreads(400, 400);
    return Bench::Finish();
}
