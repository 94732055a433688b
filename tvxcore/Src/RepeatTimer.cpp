#include <RepeatTimer.h>

#include <CoreClock.h>
#include <CoreMutex.h>
#include <CorePlatform/Thread.h>
#include <CorePlatform/WordWait.h>

#include <algorithm>
#include <atomic>
#include <boost/thread/exceptions.hpp>
#include <mutex>

namespace tvxcore {
namespace threads {

namespace {

using UniqueLock = std::unique_lock<CoreMutex>;

CoreMutex sMutex; // guards all of the below except the two words
RepeatEntry* sFirst = nullptr;
RepeatEntry* sCalled = nullptr; // the entry whose BecomeDue is running
unsigned int sEntries = 0;
Platform::ThreadHandle sThread{};
std::uintptr_t sGeneration = 0; // of the current thread; a thread of an older generation ends

std::atomic<std::uint32_t> sScheduleMoved{0}; // the timer thread waits on it
std::atomic<std::uint32_t> sCallEnded{0};     // threads that wait for the end of a call wait on it

thread_local bool tIsTimerThread = false;

void WakeTimer()
{
    ++sScheduleMoved;
    Platform::WakeOneOnWord_Impl(sScheduleMoved);
}

void EndCall()
{
    sCalled = nullptr;
    ++sCallEnded;
    Platform::WakeAllOnWord_Impl(sCallEnded);
}

void WaitForCallToEnd(UniqueLock& ioLock)
{
    const std::uint32_t before = sCallEnded;
    ioLock.unlock();
    Platform::WaitOnWord_Impl(sCallEnded, before, Platform::kEndless);
    ioLock.lock();
}

} // namespace

// Gives the functions of this file access to the private members of an entry.
struct RepeatSchedule
{
    static std::int64_t Due(const RepeatEntry& inEntry) { return inEntry.mDue; }

    static bool IsAnythingDue() { return sFirst != nullptr && sFirst->mDue <= ClockNow(); }

    static void Insert(RepeatEntry& ioEntry, std::int64_t inDue)
    {
        RepeatEntry** place = &sFirst;
        while (*place != nullptr && (*place)->mDue <= inDue) {
            place = &(*place)->mNext;
        }
        ioEntry.mDue = inDue;
        ioEntry.mNext = *place;
        ioEntry.mIsScheduled = true;
        *place = &ioEntry;
        WakeTimer();
    }

    static void Take(RepeatEntry& ioEntry)
    {
        RepeatEntry** place = &sFirst;
        while (*place != &ioEntry) {
            place = &(*place)->mNext;
        }
        *place = ioEntry.mNext;
        ioEntry.mIsScheduled = false;
    }

    static bool IsScheduled(const RepeatEntry& inEntry) { return inEntry.mIsScheduled; }

    static std::int64_t TimeToNext()
    {
        return sFirst == nullptr || ClockIsManual() ? Platform::kEndless
                                                    : std::max<std::int64_t>(sFirst->mDue - ClockNow(), 0);
    }
};

namespace {

void CallFirst(UniqueLock& ioLock, std::uintptr_t inGeneration)
{
    sCalled = sFirst;
    RepeatSchedule::Take(*sCalled);
    RepeatEntry& entry = *sCalled;
    ioLock.unlock();
    entry.BecomeDue();
    ioLock.lock();
    // If the entry has removed itself and was the last one, this thread has been replaced.
    if (sGeneration == inGeneration) {
        EndCall();
    }
}

void RunThread(void* inGeneration)
{
    const auto generation = reinterpret_cast<std::uintptr_t>(inGeneration);
    tIsTimerThread = true;
    Platform::NameCurrentThread_Impl("tvxcore timer");
    UniqueLock lock(sMutex);
    while (sGeneration == generation) {
        if (RepeatSchedule::IsAnythingDue()) {
            CallFirst(lock, generation);
            continue;
        }
        const std::uint32_t before = sScheduleMoved;
        const std::int64_t time = RepeatSchedule::TimeToNext();
        lock.unlock();
        Platform::WaitOnWord_Impl(sScheduleMoved, before, time);
        lock.lock();
    }
}

} // namespace

void RepeatTimer::Add(Platform::ThreadStarter inStarter)
{
    const UniqueLock lock(sMutex);
    if (sEntries == 0 && !inStarter(&RunThread, reinterpret_cast<void*>(sGeneration), sThread)) {
        throw boost::thread_resource_error();
    }
    ++sEntries;
}

void RepeatTimer::Schedule(RepeatEntry& ioEntry, std::int64_t inDelay)
{
    const UniqueLock lock(sMutex);
    RepeatSchedule::Insert(ioEntry, ClockNow() + inDelay);
}

void RepeatTimer::ScheduleAgain(RepeatEntry& ioEntry, std::int64_t inDelay)
{
    const UniqueLock lock(sMutex);
    const std::int64_t now = ClockNow();
    const std::int64_t due = RepeatSchedule::Due(ioEntry) + inDelay;
    RepeatSchedule::Insert(ioEntry, due > now ? due : now + inDelay);
}

void RepeatTimer::Remove(RepeatEntry& ioEntry)
{
    if (Platform::ProcessIsEnding_Impl()) {
        return; // the thread has been stopped
    }
    UniqueLock lock(sMutex);
    if (RepeatSchedule::IsScheduled(ioEntry)) {
        RepeatSchedule::Take(ioEntry);
    }
    while (sCalled == &ioEntry && !tIsTimerThread) {
        WaitForCallToEnd(lock);
    }
    if (--sEntries != 0) {
        return;
    }
    ++sGeneration;
    EndCall();
    const Platform::ThreadHandle thread = sThread;
    WakeTimer();
    lock.unlock();
    (tIsTimerThread ? &Platform::DetachThread_Impl : &Platform::JoinThread_Impl)(thread);
}

void RepeatTimer::WaitUntilNothingIsDue()
{
    UniqueLock lock(sMutex);
    WakeTimer();
    while (sCalled != nullptr || RepeatSchedule::IsAnythingDue()) {
        WaitForCallToEnd(lock);
    }
}

} // namespace threads
} // namespace tvxcore
