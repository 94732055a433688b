// Floor: Platform
// Thread-local slots for one pointer per thread, and passing a thread's name to a debugger.
#pragma once

#include <cstdint>

namespace ORL {
namespace ThreadManager {
namespace Platform {

/// The value for a slot that could not be allocated.
inline constexpr std::uint32_t kNoSlot = 0xFFFFFFFFu;

/// Returns a slot that holds null for every thread, or kNoSlot. Slots have no destructors.
std::uint32_t AllocateSlot_Impl();

/// Frees the slot. The slot's number may be reused.
void FreeSlot_Impl(std::uint32_t inSlot);

/// Returns the calling thread's pointer in a slot; null for a freed slot.
void* GetSlotValue_Impl(std::uint32_t inSlot);
void SetSlotValue_Impl(std::uint32_t inSlot, void* inValue);

/// Passes the name of the calling thread (UTF-8) to a debugger and the system's tools. Has no other effect. On Linux
/// the initial thread of the process keeps its name, which is that of the process.
/// Never fails.
void NameThread_Impl(const char* inName);

} // namespace Platform
} // namespace ThreadManager
} // namespace ORL
