// Floor: Core
#include <ORLPlatformLock.h>

#include <windows.h>

namespace ORL {
namespace Internal {

namespace {

CRITICAL_SECTION* AsSection(unsigned char* inStorage)
{
    static_assert(sizeof(CRITICAL_SECTION) == 40 && alignof(CRITICAL_SECTION) == 8,
                  "the room in the public header is exactly the system's lock");
    return reinterpret_cast<CRITICAL_SECTION*>(inStorage);
}

} // namespace

PlatformLock::PlatformLock()
{
    ::InitializeCriticalSection(AsSection(mSystemLock));
}

PlatformLock::~PlatformLock()
{
    ::DeleteCriticalSection(AsSection(mSystemLock));
}

void PlatformLock::Lock()
{
    ::EnterCriticalSection(AsSection(mSystemLock));
}

bool PlatformLock::TryLock()
{
    return ::TryEnterCriticalSection(AsSection(mSystemLock)) != FALSE;
}

void PlatformLock::Unlock()
{
    ::LeaveCriticalSection(AsSection(mSystemLock));
}

} // namespace Internal
} // namespace ORL
