#include <Platform/PageMemory.h>

#include <windows.h>

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

// The runtime exports this function only under a mangled C++ name that this compiler cannot declare.
int QueryNewMode_Impl()
{
    using QueryNewMode = int(__cdecl*)();
    static const QueryNewMode query = [] {
        const HMODULE runtime = ::GetModuleHandleW(L"msvcrt.dll");
        const FARPROC found = runtime != nullptr ? ::GetProcAddress(runtime, "?_query_new_mode@@YAHXZ") : nullptr;
        return reinterpret_cast<QueryNewMode>(reinterpret_cast<void*>(found));
    }();
    return query != nullptr ? query() : 0;
}

} // namespace Platform
} // namespace PageMemory
} // namespace ORL
