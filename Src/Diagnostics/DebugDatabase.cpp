#include <ORLDebugDatabase.h>

#include <Core/Immortal.h>
#include <Diagnostics/DebugDatabaseLifecycle.h>
#include <ORLCriticalSection.h>
#include <ORLHostSettings.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <atomic>
#include <cstdint>

namespace ORL {

namespace {

DebugDatabase* sInstance = nullptr;
std::int32_t sInstanceCount = 0; // 0 or 1: only Instance() increments the count

constexpr char kCacheSubKey[] = "DebugCache\\";

Immortal<CriticalSection> sFullPathLock;
std::atomic<bool> sFullPathIsBuilt{false};
Immortal<UTF16String> sFullPath;

const UTF16String& FullPath()
{
    if (!sFullPathIsBuilt.load(std::memory_order_acquire)) {
        const CriticalSectionLock lock(sFullPathLock.mValue);
        if (!sFullPathIsBuilt.load(std::memory_order_relaxed)) {
            sFullPath.mValue = GetRegistryBaseKey() + MakeString(kCacheSubKey);
            sFullPathIsBuilt.store(true, std::memory_order_release);
        }
    }
    return sFullPath.mValue;
}

// Ignores failures: a key that cannot be created stays closed, so all operations on it fail.
void OpenCacheKey(RegistryKey& outKey)
{
    outKey.Create(RegistryRootKeys::kUser, FullPath());
}

} // namespace

const std::string DebugDatabase::sFalseText("false");

DebugDatabase::DebugDatabase() = default;

DebugDatabase::~DebugDatabase() = default;

DebugDatabase& DebugDatabase::Instance()
{
    if (sInstance == nullptr) {
        sInstance = new DebugDatabase;
        ++sInstanceCount;
    }
    return *sInstance;
}

std::string DebugDatabase::GetEntry(const std::string& inKey, const std::string& inDefault)
{
    const StdConstString name(inKey);
    const auto cached = mCache.find(name);
    if (cached != mCache.end()) {
        return cached->second;
    }
    RegistryKey key;
    OpenCacheKey(key);
    const UTF16String valueName = MakeString(inKey);
    std::string value;
    if (!ResultSucceeded(key.GetStringValue(valueName, value))) {
        key.SetStringValue(valueName, inDefault);
        value = inDefault;
    }
    mCache.emplace(name, value);
    return value;
}

void DebugDatabase::SetEntry(const std::string& inKey, const std::string& inValue)
{
    RegistryKey key;
    OpenCacheKey(key);
    if (ResultSucceeded(key.SetStringValue(MakeString(inKey), inValue))) {
        mCache.insert_or_assign(StdConstString(inKey), inValue);
    }
}

bool DebugDatabase::HasEntry(const std::string& inKey) const
{
    return mCache.find(StdConstString(inKey)) != mCache.end();
}

void DebugDatabase::Clear()
{
    mCache.clear();
    RegistryKey key;
    key.Create(RegistryRootKeys::kUser, GetRegistryBaseKey());
    key.DeleteSubKey(MakeString(kCacheSubKey));
}

void ReleaseDebugDatabase()
{
    if (sInstanceCount < 1) {
        return;
    }
    --sInstanceCount;
    if (sInstanceCount > 0) {
        return;
    }
    delete sInstance;
    sInstance = nullptr;
}

} // namespace ORL
