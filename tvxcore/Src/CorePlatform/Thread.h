// A thread of the system, as an executor needs it.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace threads {
namespace Platform {

/// A started thread. Exactly one of Join and Detach ends the handle's life.
using ThreadHandle = std::uintptr_t;

/// Starts a thread that runs inFunction(inArgument). False when the system refuses.
bool StartThread_Impl(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread) noexcept;

/// Whoever needs threads takes them from one of these, so that a test can refuse some.
using ThreadStarter = bool (*)(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread);

/// Returns when the thread is gone, its thread-local destructors included.
void JoinThread_Impl(ThreadHandle inThread) noexcept;

/// Lets the thread end on its own.
void DetachThread_Impl(ThreadHandle inThread) noexcept;

/// Names the calling thread for debuggers and system tools, as far as the system keeps the name. UTF-8.
void NameCurrentThread_Impl(const char* inName) noexcept;

/// Gives the calling thread a priority from 0 to 5, 3 being the process's own, as far as the user may.
void SetCurrentThreadPriority_Impl(int inPriority) noexcept;

/// Processors of the machine, at least 1.
unsigned int ProcessorCount_Impl() noexcept;

/// Processors that the calling thread may run on, at least 1. Threads that it starts may run on the same.
unsigned int UsableProcessorCount_Impl() noexcept;

/// Lets other threads of this processor go first.
void YieldThread_Impl() noexcept;

/// True once the system has begun to end the process and has already stopped its other threads, wherever they were:
/// then nothing may wait for them, nor for a lock that they may hold.
bool ProcessIsEnding_Impl() noexcept;

/// A monotonic clock.
std::int64_t MonotonicNanoseconds_Impl() noexcept;

} // namespace Platform
} // namespace threads
} // namespace tvxcore
