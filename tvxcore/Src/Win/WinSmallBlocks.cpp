#include <CorePlatform/SmallBlockSystem.h>

#include <SmallBlocks/CurrentCache.h>

#include <tvxcore/Unload.h>

#include <cstdint>
#include <windows.h>

extern "C" {
// The initial value of each thread's copy. The linker merges the .tls$ sections.
extern tvxcore::utility::SmallBlocks::CacheHead* tvxcoreThreadCache;
__attribute__((section(".tls$M"), used)) tvxcore::utility::SmallBlocks::CacheHead* tvxcoreThreadCache =
    &tvxcore::utility::SmallBlocks::sNewThreadCache;
}

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

void (*sEnded)(SmallBlocks::CacheHead*) = nullptr;

// The loader calls this function on each thread that exits, because of the TLS callback below.
void NTAPI OnThreadNotice(void*, DWORD inReason, void*)
{
    if (inReason != DLL_THREAD_DETACH || sEnded == nullptr) {
        return;
    }
    SmallBlocks::CacheHead* const cache = SmallBlocks::GetCurrentCache();
    if (cache != &SmallBlocks::sNewThreadCache && cache != &SmallBlocks::sEndedThreadCache) {
        sEnded(cache);
    }
}

constexpr std::size_t kSystemAlignment = 64 * 1024;

void* Map(void* inAddress, std::size_t inSize) noexcept
{
    return ::VirtualAlloc(inAddress, inSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

// Finds a free range that is large enough and maps its aligned part. Another thread may take the range between the
// release and the mapping, so the function retries.
void* MapAligned(std::size_t inSize, std::size_t inAlignment) noexcept
{
    for (int i = 0; i < 100; ++i) {
        void* const reserved = ::VirtualAlloc(nullptr, inSize + inAlignment, MEM_RESERVE, PAGE_READWRITE);
        if (reserved == nullptr) {
            return nullptr;
        }
        ::VirtualFree(reserved, 0, MEM_RELEASE);
        const std::uintptr_t aligned =
            (reinterpret_cast<std::uintptr_t>(reserved) + inAlignment - 1) & ~(inAlignment - 1);
        if (void* const pages = Map(reinterpret_cast<void*>(aligned), inSize)) {
            return pages;
        }
    }
    return nullptr;
}

} // namespace

void* MapPages_Impl(std::size_t inSize, std::size_t inAlignment) noexcept
{
    const DWORD callersError = ::GetLastError();
    void* const pages = inAlignment <= kSystemAlignment ? Map(nullptr, inSize) : MapAligned(inSize, inAlignment);
    ::SetLastError(callersError);
    return pages;
}

void UnmapPages_Impl(void* inPages, std::size_t) noexcept
{
    const DWORD callersError = ::GetLastError();
    ::VirtualFree(inPages, 0, MEM_RELEASE);
    ::SetLastError(callersError);
}

bool WatchThreadEnds_Impl(void (*inEnded)(SmallBlocks::CacheHead* inCache)) noexcept
{
    sEnded = inEnded;
    return true;
}

bool WatchThisThread_Impl(SmallBlocks::CacheHead*) noexcept
{
    return true;
}

void ForgetThreadEnds_Impl() noexcept
{
    sEnded = nullptr;
}

void WatchForks_Impl(void (*)(), void (*)()) noexcept
{
}

// A library that belongs to the program is never unloaded; at process exit the other threads have been stopped.
bool IsUnloading_Impl() noexcept
{
    return !BelongsToProgram(reinterpret_cast<const void*>(&OnThreadNotice)) && !AreOtherThreadsStopped();
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore

extern "C" {
// The linker merges these sections into the image's list of TLS callbacks.
extern PIMAGE_TLS_CALLBACK tvxcoreThreadNotice;
__attribute__((section(".CRT$XLD"), used)) PIMAGE_TLS_CALLBACK tvxcoreThreadNotice =
    &tvxcore::utility::Platform::OnThreadNotice;
}
