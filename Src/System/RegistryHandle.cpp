#include <System/RegistryHandle.h>

namespace ORL {

using namespace Registry::Platform;
using namespace SystemErrors;

RegistryHandle::~RegistryHandle()
{
    Close();
}

SystemError RegistryHandle::Open(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess)
{
    KeyHandle key = nullptr;
    const SystemError error = OpenKey(inParent, inPath, inAccess, key);
    return error == kNoError ? Replace(key, inAccess) : error;
}

SystemError RegistryHandle::Create(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess)
{
    KeyHandle key = nullptr;
    const SystemError error = CreateKey(inParent, inPath, inAccess, key);
    return error == kNoError ? Replace(key, inAccess) : error;
}

SystemError RegistryHandle::Replace(KeyHandle inKey, unsigned inAccess)
{
    const SystemError error = Close();
    mKey = inKey;
    mView = inAccess & kAccessViewBits;
    return error;
}

SystemError RegistryHandle::Close()
{
    if (mKey == nullptr) {
        return kNoError;
    }
    const SystemError error = CloseKey_Impl(mKey);
    mKey = nullptr;
    return error;
}

SystemError RegistryHandle::DeleteTree(const unsigned short* inPath)
{
    if (mManager == nullptr) {
        const SystemError error = DeleteTree_Impl(mKey, inPath);
        if (error != kErrorNotSupported) {
            return error;
        }
    }
    const SystemError error = DeleteDescendants(inPath);
    return error == kNoError ? DeleteOne(inPath) : error;
}

SystemError RegistryHandle::DeleteDescendants(const unsigned short* inPath)
{
    RegistryHandle key(mManager);
    const SystemError opened = key.Open(mKey, inPath, kAccessReadWrite | mView);
    if (opened != kNoError) {
        return opened;
    }
    unsigned short name[kKeyNameCapacity];
    for (;;) {
        unsigned length = kKeyNameCapacity;
        if (EnumerateKey_Impl(key.Get(), 0, name, length) != kNoError) { // each iteration deletes the key at index 0
            return kNoError;
        }
        const SystemError error = key.DeleteTree(name);
        if (error != kNoError) {
            return error;
        }
    }
}

SystemError RegistryHandle::OpenKey(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                    KeyHandle& outKey) const
{
    if (mManager != nullptr && mManager->mTransaction != nullptr) {
        return OpenKeyTransacted_Impl(inParent, inPath, inAccess, mManager->mTransaction, outKey);
    }
    if (mManager != nullptr && !mManager->mFallsBack) {
        return kErrorInvalidFunction;
    }
    return OpenKey_Impl(inParent, inPath, inAccess, outKey);
}

SystemError RegistryHandle::CreateKey(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                      KeyHandle& outKey) const
{
    if (mManager != nullptr && mManager->mTransaction != nullptr) {
        return CreateKeyTransacted_Impl(inParent, inPath, inAccess, mManager->mTransaction, outKey);
    }
    if (mManager != nullptr && !mManager->mFallsBack) {
        return kErrorInvalidFunction;
    }
    return CreateKey_Impl(inParent, inPath, inAccess, outKey, nullptr);
}

SystemError RegistryHandle::DeleteOne(const unsigned short* inPath) const
{
    if (mManager == nullptr) {
        return DeleteKeyInView_Impl(mKey, inPath, mView);
    }
    if (mManager->mTransaction != nullptr) {
        return DeleteKeyTransacted_Impl(mKey, inPath, mManager->mTransaction);
    }
    return mManager->mFallsBack ? DeleteKey_Impl(mKey, inPath) : kErrorInvalidFunction;
}

} // namespace ORL
