// Floor: Platform
// Memory in whole pages, straight from the system.
#pragma once

#include <cstddef>

namespace ORL {
namespace PageMemory {
namespace Platform {

/// Zeroed, readable and writable memory of inSize bytes, a multiple of the page size, from the top of the address space
/// where the system can; null when there is none.
void* AllocatePages_Impl(std::size_t inSize);

/// Frees memory of AllocatePages_Impl. inSize is the size that was asked for.
void FreePages_Impl(void* inPages, std::size_t inSize);

/// How the runtime answers an exhausted heap: 0 where an allocation just fails. Any other mode calls handlers of the host
/// from inside of an allocation.
int QueryNewMode_Impl();

} // namespace Platform
} // namespace PageMemory
} // namespace ORL
