#include <Platform/CriticalSection.h>

#include <windows.h>

namespace ORL {
namespace Platform {

static_assert(sizeof(CRITICAL_SECTION) == kLockSize, "the opaque room holds exactly the system's lock");

namespace {

CRITICAL_SECTION* AsSection(void* inLock)
{
    return static_cast<CRITICAL_SECTION*>(inLock);
}

} // namespace

void InitializeLock_Impl(void* ioLock)
{
    ::InitializeCriticalSection(AsSection(ioLock));
}

void DeleteLock_Impl(void* ioLock)
{
    ::DeleteCriticalSection(AsSection(ioLock));
}

void EnterLock_Impl(void* ioLock)
{
    ::EnterCriticalSection(AsSection(ioLock));
}

void LeaveLock_Impl(void* ioLock)
{
    ::LeaveCriticalSection(AsSection(ioLock));
}

bool TryEnterLock_Impl(void* ioLock)
{
    return ::TryEnterCriticalSection(AsSection(ioLock)) != FALSE;
}

} // namespace Platform
} // namespace ORL
