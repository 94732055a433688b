// Floor: Platform
// Memory in whole pages, directly from the system.
#pragma once

#include <cstddef>

namespace ORL {
namespace PageMemory {
namespace Platform {

/// Returns zeroed, readable and writable memory of inSize bytes, a multiple of the page size, from the top of the
/// address space if possible. Returns null if out of memory.
void* AllocatePages_Impl(std::size_t inSize);

/// Frees memory from AllocatePages_Impl. inSize must be the same.
void FreePages_Impl(void* inPages, std::size_t inSize);

/// Returns how the C runtime handles an exhausted heap: 0 if an allocation simply fails. In any other mode a failing
/// allocation calls the host's handlers.
int QueryNewMode_Impl();

} // namespace Platform
} // namespace PageMemory
} // namespace ORL
