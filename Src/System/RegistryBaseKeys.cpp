#include <ORLHostSettings.h>

#include <CRV/Application.h>
#include <Core/Immortal.h>
#include <ORLCriticalSection.h>
#include <ORLString.h>

#include <atomic>

namespace ORL {

namespace {

// Recursive: two of the strings are built from a third under the lock.
Immortal<CriticalSection> sRegistryKeysLock;

// A string that the first call builds. The string is never destroyed, because threads may still use it at process exit.
class CachedKey
{
public:
    constexpr CachedKey() = default;

    template <class Builder>
    const UTF16String& Get(Builder inBuild)
    {
        if (!mIsBuilt.load(std::memory_order_acquire)) {
            const CriticalSectionLock lock(sRegistryKeysLock.mValue);
            if (!mIsBuilt.load(std::memory_order_relaxed)) {
                mText.mValue = inBuild();
                mIsBuilt.store(true, std::memory_order_release);
            }
        }
        return mText.mValue;
    }

private:
    std::atomic<bool> mIsBuilt{false};
    Immortal<UTF16String> mText;
};

CachedKey sBaseKey;
CachedKey sSettingsKey;
CachedKey sHelpKey;
CachedKey sCurrentVersionKey;

UTF16String KeyOfApplication()
{
    return MakeString("Software\\Zerin\\") + MakeString(CRV::GetApplicationName()) + MakeString("\\");
}

} // namespace

const UTF16String& GetRegistryBaseKey()
{
    return sBaseKey.Get(
        [] { return KeyOfApplication() + MakeString(CRV::GetApplicationVersion()) + MakeString("\\"); });
}

const UTF16String& GetRegistrySettingsKey()
{
    return sSettingsKey.Get([] { return GetRegistryBaseKey() + MakeString("Settings\\"); });
}

const UTF16String& GetRegistryHelpKey()
{
    return sHelpKey.Get([] { return GetRegistryBaseKey() + MakeString("Help\\"); });
}

const UTF16String& GetRegistryCurrentVersionKey()
{
    return sCurrentVersionKey.Get([] { return KeyOfApplication() + MakeString("CurrentVersion"); });
}

} // namespace ORL
