// The thread functions that an executor needs.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace threads {
namespace Platform {

/// A started thread. Must be passed to exactly one of JoinThread_Impl and DetachThread_Impl.
using ThreadHandle = std::uintptr_t;

/// Starts a thread that runs inFunction(inArgument). Returns false if the system cannot start the thread.
bool StartThread_Impl(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread) noexcept;

/// A pointer to StartThread_Impl. Code that starts threads calls through such a pointer, so that a test can pass a
/// function that fails.
using ThreadStarter = bool (*)(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread);

/// Waits until the thread has exited and its thread-local destructors have run.
void JoinThread_Impl(ThreadHandle inThread) noexcept;

/// Detaches the thread, so that no thread needs to join it.
void DetachThread_Impl(ThreadHandle inThread) noexcept;

/// Names the calling thread for debuggers and system tools, truncated to the system's limit. UTF-8.
void NameCurrentThread_Impl(const char* inName) noexcept;

/// Sets the priority of the calling thread, 0 to 5, as far as the user's rights allow. 3 is the priority of the
/// process.
void SetCurrentThreadPriority_Impl(int inPriority) noexcept;

/// Returns the number of processors of the machine, at least 1.
unsigned int ProcessorCount_Impl() noexcept;

/// Returns the number of processors that the calling thread may run on, at least 1. Threads that it starts inherit this
/// set of processors.
unsigned int UsableProcessorCount_Impl() noexcept;

/// Yields this processor to other threads.
void YieldThread_Impl() noexcept;

/// Returns whether process exit has already stopped all other threads, at arbitrary points. The caller must then
/// not wait for them, or for a lock that they may hold.
bool ProcessIsEnding_Impl() noexcept;

/// Returns the time of a monotonic clock.
std::int64_t MonotonicNanoseconds_Impl() noexcept;

} // namespace Platform
} // namespace threads
} // namespace tvxcore
