// Floor: Threads
// Name and module of the current thread, and whether it is the main thread.
#pragma once

#include <ORLConfig.h>
#include <ORLConstString.h>

namespace ORL {
namespace ThreadManager {

/// The record of one thread. Immutable, so thread-safe. The library owns the records that the functions below create.
class ORL_API ThreadInfo
{
public:
    ThreadInfo(const ConstString& inThreadName, const ConstString& inCurrentModule, bool inIsMainThread);
    virtual ~ThreadInfo();

    ThreadInfo(const ThreadInfo&) = delete;
    ThreadInfo& operator=(const ThreadInfo&) = delete;

    /// Return copies of the handles to the two names.
    ConstString GetThreadName() const;
    ConstString GetCurrentModule() const;

private:
    ConstString mThreadName;
    ConstString mCurrentModule;
    [[maybe_unused]] bool mIsMainThread; // unused, but part of the record's layout
};

/// Makes the calling thread the main thread, for the life of the process, and enables thread records. Called when the
/// library starts, under the foundation lock. A call while records are enabled fires an input contract; if that
/// returns, it creates a new main record for the calling thread. The earlier record stays valid for its thread and is
/// leaked. On Linux the initial thread keeps its name in process listings, since that is the name of the process.
ORL_API void RegisterMainThread();

/// Deletes the main thread's record and disables thread records. Call this function on the main thread, which stays the
/// main thread. Called when the library stops, under the foundation lock.
ORL_API void UnregisterMainThread();

/// Creates a record for the calling thread and passes its name to a debugger and the system's tools. Neither name may
/// be empty, and the library must be started. A thread that registers twice leaks its first record. Each registered
/// thread must call UnregisterThread before it exits.
ORL_API void RegisterThread(ConstString& inThreadName, ConstString& inCurrentModule);

/// Deletes the calling thread's record. The thread must not query its record afterwards.
ORL_API void UnregisterThread();

/// Returns the calling thread's record. A thread without a record gets one with the names "Unnamed Thread" and "Unnamed
/// Module". Never null. May be called at any time. The record is valid until the thread unregisters.
ORL_API ThreadInfo* GetCurrentThreadInfo();

/// Returns whether the first call of RegisterMainThread ran on this thread, even after UnregisterMainThread. May be
/// called at any time. Returns false on every thread before that call.
ORL_API bool CurrentThreadIsMainThread();

} // namespace ThreadManager
} // namespace ORL
