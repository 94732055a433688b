#include <Platform/PageMemory.h>

#include <windows.h>

// The toolchain's header declares this one with the wrong linkage.
extern "C" __declspec(dllimport) int __cdecl _query_new_mode(void);

namespace ORL {
namespace PageMemory {
namespace Platform {

void* AllocatePages_Impl(std::size_t inSize)
{
    return ::VirtualAlloc(nullptr, inSize, MEM_COMMIT | MEM_TOP_DOWN, PAGE_READWRITE);
}

void FreePages_Impl(void* inPages, std::size_t)
{
    ::VirtualFree(inPages, 0, MEM_RELEASE);
}

int QueryNewMode_Impl()
{
    return ::_query_new_mode();
}

} // namespace Platform
} // namespace PageMemory
} // namespace ORL
