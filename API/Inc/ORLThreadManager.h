// Floor: Threads
// Which thread is this, whose is it, and is it the main one.
#pragma once

#include <ORLConfig.h>
#include <ORLConstString.h>

namespace ORL {
namespace ThreadManager {

/// What is known of one thread. A record never changes.
class ORL_API ThreadInfo
{
public:
    ThreadInfo(const ConstString& inThreadName, const ConstString& inCurrentModule, bool inIsMainThread);
    virtual ~ThreadInfo();

    ThreadInfo(const ThreadInfo&) = delete;
    ThreadInfo& operator=(const ThreadInfo&) = delete;

    /// Copies of the handles.
    ConstString GetThreadName() const;
    ConstString GetCurrentModule() const;

private:
    ConstString mThreadName;
    ConstString mCurrentModule;
    [[maybe_unused]] bool mIsMainThread; // part of the record
};

/// Makes the calling thread the main thread, once and for the life of the process, and opens the thread records.
/// Part of the start of the library, under its lock. A call while the records are open is reported, and then gives the
/// calling thread the main record; the earlier one stays alive for the thread that has it, and is leaked.
/// On Linux the thread that the process began with keeps its name in the system's list: that is the process's own.
ORL_API void RegisterMainThread();

/// Deletes the main thread's record and closes the thread records. To be called on the main thread, which stays the
/// main thread. Part of the stop of the library, under its lock.
ORL_API void UnregisterMainThread();

/// Gives the calling thread a record and hands its name to a debugger and to the system's tools. Both names must be
/// given, and the library must be started. A thread that registers twice leaks its first record. The record is the
/// thread's own: it calls UnregisterThread as its last act.
ORL_API void RegisterThread(ConstString& inThreadName, ConstString& inCurrentModule);

/// Deletes the calling thread's record. The thread must not ask for its record afterwards.
ORL_API void UnregisterThread();

/// The calling thread's record, or one named "Unnamed Thread" of "Unnamed Module" where it has none. Never null, and
/// valid at any time. The record lives until the thread unregisters.
ORL_API ThreadInfo* GetCurrentThreadInfo();

/// True on the thread that was first registered as the main one, also after it was unregistered. Valid at any time;
/// false on every thread before the first registration.
ORL_API bool CurrentThreadIsMainThread();

} // namespace ThreadManager
} // namespace ORL
