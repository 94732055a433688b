#include <ORLCriticalSection.h>

#include <Platform/CriticalSection.h>

namespace ORL {

CriticalSection::CriticalSection() : mWord(nullptr)
{
    static_assert(sizeof(mPlatformLock) == Platform::kLockSize, "the public header reserves what the platforms need");
    static_assert(sizeof(CriticalSection) == Platform::kLockSize + sizeof(void*), "the lock, then one word");
    Platform::InitializeLock_Impl(mPlatformLock);
}

CriticalSection::~CriticalSection()
{
    Platform::DeleteLock_Impl(mPlatformLock);
}

void CriticalSection::Lock() const
{
    Platform::EnterLock_Impl(mPlatformLock);
}

void CriticalSection::Unlock() const
{
    Platform::LeaveLock_Impl(mPlatformLock);
}

bool CriticalSection::TryLock() const
{
    return Platform::TryEnterLock_Impl(mPlatformLock);
}

} // namespace ORL
