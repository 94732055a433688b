// Implements the seam of the registry: selects the store of a handle, and converts std::bad_alloc to an error number.
#include <Platform/Registry.h>

#include "Store/LinuxRegistryStore.h"

#include <Core/Immortal.h>

#include <atomic>
#include <new>
#include <pthread.h>

namespace ORL {
namespace Registry {

namespace Linux {

namespace {

struct Stores
{
    Store mUser{StoreKind::kUser, &FindUserLocation};
    Store mMachine{StoreKind::kMachine, &FindMachineLocation};
};

void BeforeFork();
void AfterForkInParent();
void AfterForkInChild();

std::atomic<Stores*> sStores{nullptr};

// The first use creates the stores. They are never destroyed, because threads may run after static objects have been
// destroyed.
Stores& TheStores()
{
    static Stores* const sMade = [] {
        alignas(Stores) static unsigned char sPlace[sizeof(Stores)];
        Stores* const stores = ::new (static_cast<void*>(sPlace)) Stores;
        sStores.store(stores);
        ::pthread_atfork(&BeforeFork, &AfterForkInParent, &AfterForkInChild);
        return stores;
    }();
    return *sMade;
}

// The locks stay held until after the fork, which clang's analysis cannot follow.
void BeforeFork() TVXCORE_UNCHECKED_LOCKING
{
    TheStores().mUser.LockForFork();
    TheStores().mMachine.LockForFork();
}

void AfterFork(ForkSide inSide) TVXCORE_UNCHECKED_LOCKING
{
    TheStores().mMachine.UnlockAfterFork(inSide);
    TheStores().mUser.UnlockAfterFork(inSide);
}

void AfterForkInParent()
{
    AfterFork(ForkSide::kParent);
}

void AfterForkInChild()
{
    AfterFork(ForkSide::kChild);
}

// Closes the databases when the library is unloaded or the process exits. A thread that is still running reopens them.
const struct AtUnload
{
    ~AtUnload() { ReleaseStores(); }
} sAtUnload;

} // namespace

Store& StoreOf(const HandleParts& inKey)
{
    return inKey.mIsMachine ? TheStores().mMachine : TheStores().mUser;
}

void ReleaseStores() noexcept
{
    Stores* const stores = sStores.load();
    if (stores != nullptr) {
        stores->mUser.Release();
        stores->mMachine.Release();
    }
}

} // namespace Linux

namespace Platform {

namespace {

using namespace SystemErrors;
using Linux::HandleParts;
using Linux::LengthOf;
using Linux::Store;
using Linux::UnitsView;

template <class Work>
SystemError WithStore(KeyHandle inKey, Work inWork) noexcept
{
    HandleParts parts;
    if (!Linux::DecodeHandle(inKey, parts)) {
        return kErrorInvalidHandle;
    }
    try {
        return inWork(Linux::StoreOf(parts), parts);
    } catch (...) { // only std::bad_alloc is possible
        return kErrorNotEnoughMemory;
    }
}

KeyHandle Predefined(unsigned inNumber)
{
    return reinterpret_cast<KeyHandle>(static_cast<std::intptr_t>(static_cast<std::int32_t>(inNumber)));
}

UnitsView NameOf(const unsigned short* inName)
{
    return UnitsView(inName, LengthOf(inName));
}

constexpr unsigned kTypeMultiString = 7;

// As on Windows, a terminator directly after the data of a string type counts as part of it.
unsigned SizeWithTerminator(unsigned inType, const void* inData, unsigned inSize)
{
    const bool isText = inType == kTypeString || inType == kTypeExpandString || inType == kTypeMultiString;
    if (!isText || inSize < sizeof(unsigned short)) {
        return inSize;
    }
    const auto* const units = static_cast<const unsigned short*>(inData);
    const unsigned count = inSize / static_cast<unsigned>(sizeof(unsigned short));
    return units[count - 1] != 0 && units[count] == 0 ? inSize + static_cast<unsigned>(sizeof(unsigned short)) : inSize;
}

} // namespace

KeyHandle GetUserRoot_Impl() noexcept
{
    return Predefined(0x80000001);
}

KeyHandle GetMachineRoot_Impl() noexcept
{
    return Predefined(0x80000002);
}

SystemError OpenKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey)
{
    outKey = nullptr;
    return WithStore(inParent, [&](Store& ioStore, const HandleParts& inParts) {
        return ioStore.Open(inParts, inPath, inAccess, outKey);
    });
}

SystemError CreateKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                           unsigned* outDisposition)
{
    outKey = nullptr;
    if (inPath == nullptr) {
        return kErrorInvalidParameter;
    }
    return WithStore(inParent, [&](Store& ioStore, const HandleParts& inParts) {
        bool isMade = false;
        const SystemError error = ioStore.Create(inParts, inPath, inAccess, outKey, isMade);
        if (error == kNoError && outDisposition != nullptr) {
            *outDisposition = isMade ? kCreatedKey : kOpenedKey;
        }
        return error;
    });
}

// Linux has no system-wide transaction manager.
SystemError OpenKeyTransacted_Impl(KeyHandle, const unsigned short*, unsigned, void*, KeyHandle& outKey)
{
    outKey = nullptr;
    return kErrorInvalidFunction;
}

SystemError CreateKeyTransacted_Impl(KeyHandle, const unsigned short*, unsigned, void*, KeyHandle& outKey)
{
    outKey = nullptr;
    return kErrorInvalidFunction;
}

SystemError DeleteKeyTransacted_Impl(KeyHandle, const unsigned short*, void*)
{
    return kErrorInvalidFunction;
}

SystemError CloseKey_Impl(KeyHandle inKey)
{
    return WithStore(inKey, [](Store& ioStore, const HandleParts& inParts) {
        return inParts.mIsRoot ? kNoError : ioStore.Close(inParts);
    });
}

SystemError DeleteKey_Impl(KeyHandle inParent, const unsigned short* inPath)
{
    return inPath == nullptr ? kErrorInvalidParameter
                             : WithStore(inParent, [&](Store& ioStore, const HandleParts& inParts) {
                                   return ioStore.Delete(inParts, inPath, Linux::Descendants::kRefuse);
                               });
}

SystemError DeleteKeyInView_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned)
{
    return DeleteKey_Impl(inParent, inPath);
}

SystemError DeleteTree_Impl(KeyHandle inParent, const unsigned short* inPath)
{
    return WithStore(inParent, [&](Store& ioStore, const HandleParts& inParts) {
        return ioStore.Delete(inParts, inPath, Linux::Descendants::kDelete);
    });
}

SystemError EnumerateKey_Impl(KeyHandle inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength)
{
    return WithStore(inKey, [&](Store& ioStore, const HandleParts& inParts) {
        return ioStore.Enumerate(inParts, inIndex, outName, ioLength);
    });
}

SystemError QueryValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned* outType, void* outData,
                            unsigned* ioSize)
{
    if (outData != nullptr && ioSize == nullptr) {
        return kErrorInvalidParameter;
    }
    return WithStore(inKey, [&](Store& ioStore, const HandleParts& inParts) {
        return ioStore.Query(inParts, NameOf(inName), outType, outData, ioSize);
    });
}

SystemError SetValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned inType, const void* inData,
                          unsigned inSize)
{
    if (inData == nullptr && inSize != 0) {
        return kErrorNoAccess;
    }
    return WithStore(inKey, [&](Store& ioStore, const HandleParts& inParts) {
        const unsigned size = SizeWithTerminator(inType, inData, inSize);
        return ioStore.Set(inParts, NameOf(inName), inType, inData, size);
    });
}

SystemError DeleteValue_Impl(KeyHandle inKey, const unsigned short* inName)
{
    return WithStore(inKey, [&](Store& ioStore, const HandleParts& inParts) {
        return ioStore.DeleteValue(inParts, NameOf(inName));
    });
}

SystemError ListValues_Impl(KeyHandle inKey, std::vector<Value>& outValues)
{
    return WithStore(inKey,
                     [&](Store& ioStore, const HandleParts& inParts) { return ioStore.List(inParts, outValues); });
}

SystemError ApplyEdits_Impl(KeyHandle inRoot, const std::vector<Edit>& inEdits)
{
    return WithStore(inRoot, [&](Store& ioStore, const HandleParts&) { return ioStore.Apply(inEdits); });
}

StoreState GetStoreState_Impl(KeyHandle inRoot, StoreCheck inCheck)
{
    HandleParts parts;
    Linux::DecodeHandle(inRoot, parts);
    return Linux::StoreOf(parts).State(inCheck);
}

} // namespace Platform
} // namespace Registry
} // namespace ORL
