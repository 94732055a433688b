#include <CorePlatform/SmallBlockSystem.h>

#include <SmallBlocks/CachePool.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/Unload.h>

#include <cerrno>
#include <cstdint>
#include <pthread.h>
#include <sys/mman.h>

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

pthread_key_t sThreadEndKey;
bool sHasThreadEndKey = false;
void (*sEnded)(SmallBlocks::CacheHead*) = nullptr;

// The destructor of a pthread key, not called once the key is deleted. C++ thread-local destructors would keep the
// library loaded until every thread has exited.
void OnKeyDestroyed(void* inCache)
{
    sEnded(static_cast<SmallBlocks::CacheHead*>(inCache));
}

void* Map(std::size_t inSize) noexcept
{
    const int callersError = errno;
    void* const pages = ::mmap(nullptr, inSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    errno = callersError;
    return pages != MAP_FAILED ? pages : nullptr;
}

constexpr std::size_t kPage = 4096;

} // namespace

// mmap aligns to pages. For a larger alignment, maps more and unmaps both ends.
void* MapPages_Impl(std::size_t inSize, std::size_t inAlignment) noexcept
{
    if (inAlignment <= kPage) {
        return Map(inSize);
    }
    char* const pages = static_cast<char*>(Map(inSize + inAlignment));
    if (pages == nullptr) {
        return nullptr;
    }
    const std::size_t before = (0 - reinterpret_cast<std::uintptr_t>(pages)) & (inAlignment - 1);
    if (before != 0) {
        UnmapPages_Impl(pages, before);
    }
    UnmapPages_Impl(pages + before + inSize, inAlignment - before);
    return pages + before;
}

void UnmapPages_Impl(void* inPages, std::size_t inSize) noexcept
{
    const int callersError = errno;
    ::munmap(inPages, inSize);
    errno = callersError;
}

bool WatchThreadEnds_Impl(void (*inEnded)(SmallBlocks::CacheHead* inCache)) noexcept
{
    sEnded = inEnded;
    sHasThreadEndKey = ::pthread_key_create(&sThreadEndKey, &OnKeyDestroyed) == 0;
    return sHasThreadEndKey;
}

bool WatchThisThread_Impl(SmallBlocks::CacheHead* inCache) noexcept
{
    return ::pthread_setspecific(sThreadEndKey, inCache) == 0;
}

void ForgetThreadEnds_Impl() noexcept
{
    if (sHasThreadEndKey) {
        ::pthread_key_delete(sThreadEndKey);
        sHasThreadEndKey = false;
    }
}

void WatchForks_Impl(void (*inBefore)(), void (*inAfter)()) noexcept
{
    ::pthread_atfork(inBefore, inAfter, inAfter);
}

namespace {

// If a library that was loaded at run time is unloaded, its destructor functions run before its static destructors; at
// process exit they run after those of all such libraries. So if a static destructor runs after such a function, the
// process continues.
bool sEndingFunctionRan = false;

__attribute__((destructor)) void OnEnding()
{
    sEndingFunctionRan = true;
}

// A library that belongs to the program is never unloaded, but at exit its destructor functions run first too.
const bool sBelongsToProgram =
    BelongsToProgram(reinterpret_cast<const void*>(&SmallBlockAllocator::Metrics::GetSnapshot));

} // namespace

bool IsUnloading_Impl() noexcept
{
    return sEndingFunctionRan && !sBelongsToProgram;
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
