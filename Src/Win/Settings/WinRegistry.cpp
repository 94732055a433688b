#include <Platform/Registry.h>

#include "../Calls/WinText.h"

#include <windows.h>

#include <atomic>

namespace ORL {
namespace Registry {
namespace Platform {

namespace {

using ORL::Win::AsUnits;
using ORL::Win::AsWide;
using namespace SystemErrors;

static_assert(kAccessRead == KEY_READ && kAccessWrite == KEY_WRITE && kAccessAll == KEY_ALL_ACCESS);
static_assert(kAccessViewBits == (KEY_WOW64_32KEY | KEY_WOW64_64KEY));
static_assert(kTypeString == REG_SZ && kTypeExpandString == REG_EXPAND_SZ && kTypeBinary == REG_BINARY);
static_assert(kCreatedKey == REG_CREATED_NEW_KEY && kOpenedKey == REG_OPENED_EXISTING_KEY);
static_assert(kTypeUInt32 == REG_DWORD && kTypeUInt64 == REG_QWORD);
static_assert(sizeof(DWORD) == sizeof(unsigned));

constexpr unsigned kValueNameCapacity = 16384;

HKEY AsKey(KeyHandle inKey)
{
    return static_cast<HKEY>(inKey);
}

DWORD* AsDword(unsigned* ioNumber)
{
    return reinterpret_cast<DWORD*>(ioNumber);
}

SystemError AsError(LSTATUS inStatus)
{
    return static_cast<SystemError>(inStatus);
}

template <class Function>
Function FindFunction(const char* inName)
{
    const HMODULE module = ::GetModuleHandleW(L"Advapi32.dll");
    const FARPROC function = module != nullptr ? ::GetProcAddress(module, inName) : nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(function));
}

using OpenTransacted = LSTATUS(WINAPI*)(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY, HANDLE, PVOID);
using CreateTransacted = LSTATUS(WINAPI*)(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, const SECURITY_ATTRIBUTES*,
                                          PHKEY, LPDWORD, HANDLE, PVOID);
using DeleteTransacted = LSTATUS(WINAPI*)(HKEY, LPCWSTR, REGSAM, DWORD, HANDLE, PVOID);
using DeleteInView = LSTATUS(WINAPI*)(HKEY, LPCWSTR, REGSAM, DWORD);

// Looked up once per process without a lock; threads that look it up at the same time find the same function.
std::atomic<DeleteInView> sDeleteInView{nullptr};
std::atomic<bool> sDeleteInViewLookedUp{false};

DeleteInView FindDeleteInView()
{
    if (!sDeleteInViewLookedUp.load(std::memory_order_acquire)) {
        sDeleteInView.store(FindFunction<DeleteInView>("RegDeleteKeyExW"), std::memory_order_relaxed);
        sDeleteInViewLookedUp.store(true, std::memory_order_release);
    }
    return sDeleteInView.load(std::memory_order_relaxed);
}

// Queries the sizes of the longest name and the largest data among the values of a key.
SystemError LargestValue(KeyHandle inKey, DWORD& outNameUnits, DWORD& outBytes)
{
    return AsError(::RegQueryInfoKeyW(AsKey(inKey), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      &outNameUnits, &outBytes, nullptr, nullptr));
}

} // namespace

KeyHandle GetUserRoot_Impl() noexcept
{
    return HKEY_CURRENT_USER;
}

KeyHandle GetMachineRoot_Impl() noexcept
{
    return HKEY_LOCAL_MACHINE;
}

SystemError OpenKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey)
{
    HKEY key = nullptr;
    const LSTATUS status = ::RegOpenKeyExW(AsKey(inParent), AsWide(inPath), 0, inAccess, &key);
    outKey = key;
    return AsError(status);
}

SystemError CreateKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                           unsigned* outDisposition)
{
    HKEY key = nullptr;
    const LSTATUS status = ::RegCreateKeyExW(AsKey(inParent), AsWide(inPath), 0, nullptr, 0, inAccess, nullptr, &key,
                                             AsDword(outDisposition));
    outKey = key;
    return AsError(status);
}

SystemError OpenKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                   void* inTransaction, KeyHandle& outKey)
{
    const auto open = FindFunction<OpenTransacted>("RegOpenKeyTransactedW");
    if (open == nullptr) {
        return kErrorInvalidFunction;
    }
    HKEY key = nullptr;
    const LSTATUS status = open(AsKey(inParent), AsWide(inPath), 0, inAccess, &key, inTransaction, nullptr);
    outKey = key;
    return AsError(status);
}

SystemError CreateKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                     void* inTransaction, KeyHandle& outKey)
{
    const auto create = FindFunction<CreateTransacted>("RegCreateKeyTransactedW");
    if (create == nullptr) {
        return kErrorInvalidFunction;
    }
    HKEY key = nullptr;
    const LSTATUS status = create(AsKey(inParent), AsWide(inPath), 0, nullptr, 0, inAccess, nullptr, &key, nullptr,
                                  inTransaction, nullptr);
    outKey = key;
    return AsError(status);
}

SystemError DeleteKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, void* inTransaction)
{
    const auto erase = FindFunction<DeleteTransacted>("RegDeleteKeyTransactedW");
    return erase != nullptr ? AsError(erase(AsKey(inParent), AsWide(inPath), 0, 0, inTransaction, nullptr))
                            : kErrorInvalidFunction;
}

SystemError CloseKey_Impl(KeyHandle inKey)
{
    return AsError(::RegCloseKey(AsKey(inKey)));
}

SystemError DeleteKey_Impl(KeyHandle inParent, const unsigned short* inPath)
{
    return AsError(::RegDeleteKeyW(AsKey(inParent), AsWide(inPath)));
}

SystemError DeleteKeyInView_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inView)
{
    const DeleteInView erase = FindDeleteInView();
    return erase != nullptr ? AsError(erase(AsKey(inParent), AsWide(inPath), inView, 0))
                            : DeleteKey_Impl(inParent, inPath);
}

SystemError DeleteTree_Impl(KeyHandle, const unsigned short*)
{
    return kErrorNotSupported;
}

SystemError EnumerateKey_Impl(KeyHandle inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength)
{
    return AsError(::RegEnumKeyExW(AsKey(inKey), inIndex, AsWide(outName), AsDword(&ioLength), nullptr, nullptr,
                                   nullptr, nullptr));
}

SystemError QueryValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned* outType, void* outData,
                            unsigned* ioSize)
{
    return AsError(::RegQueryValueExW(AsKey(inKey), AsWide(inName), nullptr, AsDword(outType),
                                      static_cast<BYTE*>(outData), AsDword(ioSize)));
}

SystemError SetValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned inType, const void* inData,
                          unsigned inSize)
{
    return AsError(::RegSetValueExW(AsKey(inKey), AsWide(inName), 0, inType, static_cast<const BYTE*>(inData), inSize));
}

SystemError DeleteValue_Impl(KeyHandle inKey, const unsigned short* inName)
{
    return AsError(::RegDeleteValueW(AsKey(inKey), AsWide(inName)));
}

SystemError ListValues_Impl(KeyHandle inKey, std::vector<Value>& outValues)
{
    DWORD ignored = 0;
    DWORD largest = 0;
    SystemError error = LargestValue(inKey, ignored, largest);
    UTF16String name(kValueNameCapacity, 0);
    std::vector<unsigned char> data(largest + 1);
    for (DWORD index = 0; error == kNoError; ++index) {
        DWORD length = kValueNameCapacity;
        DWORD type = 0;
        DWORD size = static_cast<DWORD>(data.size());
        error = AsError(
            ::RegEnumValueW(AsKey(inKey), index, AsWide(name.data()), &length, nullptr, &type, data.data(), &size));
        if (error == kErrorMoreData) { // another writer has made the value longer
            data.resize(data.size() * 2);
            --index;
            error = kNoError;
        } else if (error == kNoError) {
            outValues.push_back(
                {UTF16String(name, 0, length), static_cast<unsigned>(type), {data.data(), data.data() + size}});
        }
    }
    return error == kErrorNoMoreItems ? kNoError : error;
}

SystemError ApplyEdits_Impl(KeyHandle, const std::vector<Edit>&)
{
    return kErrorNotSupported;
}

StoreState GetStoreState_Impl(KeyHandle, StoreCheck)
{
    return StoreState(); // nothing to report: the OS maintains the registry
}

} // namespace Platform
} // namespace Registry
} // namespace ORL
