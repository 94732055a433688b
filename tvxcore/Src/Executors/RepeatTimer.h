// The timer thread for all repeated functions in the process.
//
// The thread starts when the first entry is added and has exited when the last one is removed, so it never outlives the
// library.
#pragma once

#include <CorePlatform/Thread.h>

#include <cstdint>

namespace tvxcore {
namespace threads {

/// A recurring event. An entry's owner keeps it alive from Add until Remove has returned.
class RepeatEntry
{
public:
    RepeatEntry() = default;
    RepeatEntry(const RepeatEntry&) = delete;
    RepeatEntry& operator=(const RepeatEntry&) = delete;

    /// Called on the timer's thread, with no lock held, once for each Schedule.
    virtual void BecomeDue() = 0;

protected:
    ~RepeatEntry() = default;

private:
    friend struct RepeatSchedule;

    std::int64_t mDue = 0;        // a time of ClockNow()
    RepeatEntry* mNext = nullptr; // the entry due next after this one, if scheduled
    bool mIsScheduled = false;
};

class RepeatTimer
{
public:
    /// Starts the thread if needed and keeps it running until Remove. Throws boost::thread_resource_error if the system
    /// cannot start the thread.
    static void Add(Platform::ThreadStarter inStarter = &Platform::StartThread_Impl);

    /// Makes the entry due in inDelay nanoseconds. The entry must not be scheduled yet.
    static void Schedule(RepeatEntry& ioEntry, std::int64_t inDelay);

    /// Makes the entry due inDelay nanoseconds after its previous due time, or after now if that time has passed.
    static void ScheduleAgain(RepeatEntry& ioEntry, std::int64_t inDelay);

    /// Undoes Add and Schedule. Unless called by BecomeDue itself, waits until BecomeDue is no longer running and, for
    /// the last entry, until the thread has exited.
    static void Remove(RepeatEntry& ioEntry);

    /// Waits until BecomeDue has been called for all entries that are due.
    static void WaitUntilNothingIsDue();
};

} // namespace threads
} // namespace tvxcore
