#include <Platform/PageMemory.h>

#include "SystemCalls.h"

namespace ORL {
namespace PageMemory {
namespace Platform {

// The system maps from the top of the address space downwards by itself.
void* AllocatePages_Impl(std::size_t inSize)
{
    return Linux::System().mMapPages(inSize);
}

void FreePages_Impl(void* inPages, std::size_t inSize)
{
    Linux::System().mUnmapPages(inPages, inSize);
}

// The runtime here has no handlers that an allocation could call.
int QueryNewMode_Impl()
{
    return 0;
}

} // namespace Platform
} // namespace PageMemory
} // namespace ORL
