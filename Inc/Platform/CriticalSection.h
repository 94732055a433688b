// Floor: Platform
// The recursive lock that each platform brings for CriticalSection.
#pragma once

#include <cstddef>

namespace ORL {
namespace Platform {

/// Bytes, aligned to 8, that a lock of either platform fits in.
inline constexpr std::size_t kLockSize = 40;

/// Makes an unlocked lock in ioLock. Required of the system: a recursive lock with a try that does not wait, without
/// a spin count of its own choosing. None of these fails.
void InitializeLock_Impl(void* ioLock);
void DeleteLock_Impl(void* ioLock);
void EnterLock_Impl(void* ioLock);
void LeaveLock_Impl(void* ioLock);

/// True when the calling thread now holds the lock (once more).
bool TryEnterLock_Impl(void* ioLock);

} // namespace Platform
} // namespace ORL
