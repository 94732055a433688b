// The one thread that waits for the times of all repeated functions of the process.
//
// The thread starts with the first entry that is added and has ended when the last one has been removed, so it never
// outlives the need for it, nor the library.
#pragma once

#include <CorePlatform/Thread.h>

#include <cstdint>

namespace tvxcore {
namespace threads {

/// Something that becomes due again and again. Its owner keeps it alive from Add until Remove has returned.
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

    std::int64_t mDue = 0;          // on the clock
    RepeatEntry* mNext = nullptr;   // of those that are scheduled, the one that is due next
    bool mIsScheduled = false;
};

class RepeatTimer
{
public:
    /// Keeps the thread running until Remove. Throws boost::thread_resource_error when the system refuses the thread.
    static void Add(Platform::ThreadStarter inStarter = &Platform::StartThread_Impl);

    /// Makes the entry due in inDelay nanoseconds. It must not be scheduled already.
    static void Schedule(RepeatEntry& ioEntry, std::int64_t inDelay);

    /// The same, inDelay after it was due last, or from now where that has gone by.
    static void ScheduleAgain(RepeatEntry& ioEntry, std::int64_t inDelay);

    /// Undoes Add and Schedule. When this returns, BecomeDue is not running, unless it is what calls this. The last
    /// one returns after the thread has ended.
    static void Remove(RepeatEntry& ioEntry);

    /// Returns when every entry that is due has had its call.
    static void WaitUntilNothingIsDue();
};

} // namespace threads
} // namespace tvxcore
