// Floor: Platform
// The slot in which each thread keeps a pointer of its own, and the way a thread's name reaches a debugger.
#pragma once

#include <cstdint>

namespace ORL {
namespace ThreadManager {
namespace Platform {

/// Stands for a slot that could not be had.
inline constexpr std::uint32_t kNoSlot = 0xFFFFFFFFu;

/// A slot that holds null for every thread, or kNoSlot. Nothing runs at the end of a thread.
std::uint32_t AllocateSlot_Impl();

/// Gives the slot back. Its number may be handed out again.
void FreeSlot_Impl(std::uint32_t inSlot);

/// The calling thread's pointer in a slot; null for a slot that was given back.
void* GetSlotValue_Impl(std::uint32_t inSlot);
void SetSlotValue_Impl(std::uint32_t inSlot, void* inValue);

/// Hands the name of the calling thread (UTF-8) to a debugger and to the system's tools. Changes nothing else, and
/// nothing visible when no debugger is attached. On Linux the thread that the process began with keeps its name, which is the
/// process's own. Cannot fail.
void NameThread_Impl(const char* inName);

} // namespace Platform
} // namespace ThreadManager
} // namespace ORL
