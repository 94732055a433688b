// Opens, creates, deletes and lists keys.
#include <System/RegistryKeyImpl.h>

#include <ORLDebug.h>

#include <utility>

namespace ORL {

using namespace Registry::Platform;
using namespace SystemErrors;

namespace {

KeyHandle RootHandle(RegistryRootKeys::Type inType)
{
    if (inType == RegistryRootKeys::kMachine) {
        return GetMachineRoot_Impl();
    }
    ORL_ASSERT_AT(inType == RegistryRootKeys::kUser, "WinRegistryKey", 52,
                  "ORL::`anonymous-namespace'::GetHKeyFromORLRegistryRootKey");
    return GetUserRoot_Impl();
}

unsigned SystemAccess(RegistryKeyAccess::Type inDesiredAccess)
{
    if (inDesiredAccess == 0) {
        return kAccessAll;
    }
    ORL_ASSERT_IN((inDesiredAccess & RegistryKeyAccess::kRead) || (inDesiredAccess & RegistryKeyAccess::kWrite),
                  "ORL::`anonymous-namespace'::GetREGSAMFromRegistryKeyAccess");
    const bool reads = (inDesiredAccess & RegistryKeyAccess::kRead) != 0;
    const bool writes = (inDesiredAccess & RegistryKeyAccess::kWrite) != 0;
    return reads && writes ? kAccessReadWrite : reads ? kAccessRead : writes ? kAccessWrite : 0;
}

Result ResultOf(SystemError inError)
{
    return inError == kNoError ? kSuccess : kRegistryFailure;
}

// Converts the errors of operations that report a missing key as kFileNotFound.
Result ResultOfLookup(SystemError inError)
{
    return inError == kErrorFileNotFound || inError == kErrorPathNotFound ? kFileNotFound : ResultOf(inError);
}

} // namespace

Result RegistryKey::PrivateImpl::Open(KeyHandle inParent, const UTF16String& inPath, unsigned inAccess)
{
    mPath = inPath;
    return ResultOfLookup(mKey->Open(inParent, mPath.c_str(), inAccess));
}

Result RegistryKey::PrivateImpl::Create(KeyHandle inParent, const UTF16String& inPath)
{
    mPath = inPath;
    if (mKey->Open(inParent, mPath.c_str(), kAccessAll) == kNoError) {
        return kRegistryKeyExisted;
    }
    return ResultOf(mKey->Create(inParent, mPath.c_str(), kAccessAll));
}

RegistryKey::RegistryKey() : mImpl(new PrivateImpl), mImplOwner(mImpl)
{
}

RegistryKey::RegistryKey(const RegistryKey& inOther) : mImpl(new PrivateImpl(*inOther.mImpl)), mImplOwner(mImpl)
{
}

RegistryKey::~RegistryKey()
{
    delete mImplOwner;
}

RegistryKey& RegistryKey::operator=(const RegistryKey& inOther)
{
    UTF16String path = inOther.mImpl->mPath; // may throw, so copy it before changing anything
    mImpl->mKey = inOther.mImpl->mKey;
    mImpl->mPath.swap(path);
    return *this;
}

void RegistryKey::Swap(RegistryKey& ioOther)
{
    mImpl->mKey.Swap(ioOther.mImpl->mKey);
    mImpl->mPath.swap(ioOther.mImpl->mPath);
}

Result RegistryKey::Open(RegistryRootKeys::Type inRoot, const UTF16String& inPath, RegistryKeyAccess::Type inAccess)
{
    const KeyHandle root = RootHandle(inRoot);
    return mImpl->Open(root, inPath, SystemAccess(inAccess));
}

Result RegistryKey::Open(RegistryKey& inParent, const UTF16String& inPath)
{
    return mImpl->Open(inParent.mImpl->mKey->Get(), inPath, kAccessAll);
}

Result RegistryKey::Create(RegistryRootKeys::Type inRoot, const UTF16String& inPath)
{
    return mImpl->Create(RootHandle(inRoot), inPath);
}

Result RegistryKey::Create(RegistryKey& inParent, const UTF16String& inPath)
{
    return mImpl->Create(inParent.mImpl->mKey->Get(), inPath);
}

Result RegistryKey::DeleteValue(const UTF16String& inName)
{
    return ResultOf(DeleteValue_Impl(mImpl->mKey->Get(), inName.c_str()));
}

Result RegistryKey::DeleteSubKey(const UTF16String& inPath)
{
    return ResultOfLookup(mImpl->mKey->DeleteTree(inPath.c_str()));
}

void RegistryKey::EnumerateSubKeys(std::vector<RegistryKey>& ioKeys) const
{
    const KeyHandle parent = mImpl->mKey->Get();
    unsigned short name[kKeyNameCapacity];
    unsigned length = kKeyNameCapacity;
    for (unsigned index = 0; EnumerateKey_Impl(parent, index, name, length) == kNoError; ++index) {
        RegistryKey key;
        key.mImpl->mPath.assign(name, length);
        if (key.mImpl->mKey->Open(parent, name, kAccessAll) != kNoError) {
            key.mImpl->mKey->Create(parent, name, kAccessAll);
        }
        ioKeys.push_back(key);
        length = kKeyNameCapacity;
    }
}

UTF16String RegistryKey::GetParentKeyPath() const
{
    return mImpl->mPath;
}

UTF16String RegistryKey::GetParentKeyPathLastPart() const
{
    return GetParentKeyPath();
}

} // namespace ORL
