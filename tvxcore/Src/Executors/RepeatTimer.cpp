#include <Executors/RepeatTimer.h>

#include <CorePlatform/Thread.h>
#include <CorePlatform/WordWait.h>
#include <Executors/CoreClock.h>
#include <Executors/CoreMutex.h>

#include <algorithm>
#include <atomic>
#include <boost/thread/exceptions.hpp>

namespace tvxcore {
namespace threads {

namespace {

CoreMutex sMutex;
RepeatEntry* sFirst TVXCORE_GUARDED_BY(sMutex) = nullptr;
RepeatEntry* sCalled TVXCORE_GUARDED_BY(sMutex) = nullptr; // the entry whose BecomeDue is running
unsigned int sEntries TVXCORE_GUARDED_BY(sMutex) = 0;
Platform::ThreadHandle sThread TVXCORE_GUARDED_BY(sMutex){};
std::uintptr_t sGeneration TVXCORE_GUARDED_BY(sMutex) = 0; // generation of the current thread; older threads exit

std::atomic<std::uint32_t> sScheduleMoved{0}; // the word on which the timer thread waits
std::atomic<std::uint32_t> sCallEnded{0};     // the word on which threads wait for the end of a call

thread_local bool tIsTimerThread = false;

void WakeTimer()
{
    ++sScheduleMoved;
    Platform::WakeOneOnWord_Impl(sScheduleMoved);
}

void EndCall() TVXCORE_REQUIRES(sMutex)
{
    sCalled = nullptr;
    ++sCallEnded;
    Platform::WakeAllOnWord_Impl(sCallEnded);
}

// Unlocks sMutex while it waits.
void WaitForCallToEnd() TVXCORE_REQUIRES(sMutex)
{
    const std::uint32_t before = sCallEnded;
    sMutex.unlock();
    Platform::WaitOnWord_Impl(sCallEnded, before, Platform::kEndless);
    sMutex.lock();
}

} // namespace

// Gives the functions of this file access to the private members of an entry.
struct RepeatSchedule
{
    static std::int64_t Due(const RepeatEntry& inEntry) { return inEntry.mDue; }

    static bool IsAnythingDue() TVXCORE_REQUIRES(sMutex) { return sFirst != nullptr && sFirst->mDue <= ClockNow(); }

    static void Insert(RepeatEntry& ioEntry, std::int64_t inDue) TVXCORE_REQUIRES(sMutex)
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

    static void Take(RepeatEntry& ioEntry) TVXCORE_REQUIRES(sMutex)
    {
        RepeatEntry** place = &sFirst;
        while (*place != &ioEntry) {
            place = &(*place)->mNext;
        }
        *place = ioEntry.mNext;
        ioEntry.mIsScheduled = false;
    }

    static bool IsScheduled(const RepeatEntry& inEntry) { return inEntry.mIsScheduled; }

    static std::int64_t TimeToNext() TVXCORE_REQUIRES(sMutex)
    {
        return sFirst == nullptr || ClockIsManual() ? Platform::kEndless
                                                    : std::max<std::int64_t>(sFirst->mDue - ClockNow(), 0);
    }
};

namespace {

// Unlocks sMutex during the call.
void CallFirst(std::uintptr_t inGeneration) TVXCORE_REQUIRES(sMutex)
{
    sCalled = sFirst;
    RepeatSchedule::Take(*sCalled);
    RepeatEntry& entry = *sCalled;
    sMutex.unlock();
    entry.BecomeDue();
    sMutex.lock();
    // If the last entry has removed itself, Remove has already ended the call.
    if (sGeneration == inGeneration) {
        EndCall();
    }
}

void RunThread(void* inGeneration)
{
    const auto generation = reinterpret_cast<std::uintptr_t>(inGeneration);
    tIsTimerThread = true;
    Platform::NameCurrentThread_Impl("tvxcore timer");
    const CoreMutexLock lock(sMutex);
    while (sGeneration == generation) {
        if (RepeatSchedule::IsAnythingDue()) {
            CallFirst(generation);
            continue;
        }
        const std::uint32_t before = sScheduleMoved;
        const std::int64_t time = RepeatSchedule::TimeToNext();
        sMutex.unlock();
        Platform::WaitOnWord_Impl(sScheduleMoved, before, time);
        sMutex.lock();
    }
}

} // namespace

void RepeatTimer::Add(Platform::ThreadStarter inStarter)
{
    const CoreMutexLock lock(sMutex);
    if (sEntries == 0 && !inStarter(&RunThread, reinterpret_cast<void*>(sGeneration), sThread)) {
        throw boost::thread_resource_error();
    }
    ++sEntries;
}

void RepeatTimer::Schedule(RepeatEntry& ioEntry, std::int64_t inDelay)
{
    const CoreMutexLock lock(sMutex);
    RepeatSchedule::Insert(ioEntry, ClockNow() + inDelay);
}

void RepeatTimer::ScheduleAgain(RepeatEntry& ioEntry, std::int64_t inDelay)
{
    const CoreMutexLock lock(sMutex);
    const std::int64_t now = ClockNow();
    const std::int64_t due = RepeatSchedule::Due(ioEntry) + inDelay;
    RepeatSchedule::Insert(ioEntry, due > now ? due : now + inDelay);
}

void RepeatTimer::Remove(RepeatEntry& ioEntry)
{
    if (Platform::ProcessIsEnding_Impl()) {
        return; // the thread has been stopped
    }
    Platform::ThreadHandle thread{};
    {
        const CoreMutexLock lock(sMutex);
        if (RepeatSchedule::IsScheduled(ioEntry)) {
            RepeatSchedule::Take(ioEntry);
        }
        while (sCalled == &ioEntry && !tIsTimerThread) {
            WaitForCallToEnd();
        }
        if (--sEntries != 0) {
            return;
        }
        ++sGeneration;
        EndCall();
        thread = sThread;
        WakeTimer();
    }
    (tIsTimerThread ? &Platform::DetachThread_Impl : &Platform::JoinThread_Impl)(thread);
}

void RepeatTimer::WaitUntilNothingIsDue()
{
    const CoreMutexLock lock(sMutex);
    WakeTimer();
    while (sCalled != nullptr || RepeatSchedule::IsAnythingDue()) {
        WaitForCallToEnd();
    }
}

} // namespace threads
} // namespace tvxcore
