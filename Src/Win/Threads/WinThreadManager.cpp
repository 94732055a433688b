#include <Platform/ThreadManager.h>

#include <windows.h>

namespace ORL {
namespace ThreadManager {
namespace Platform {

namespace {

constexpr DWORD kThreadNameException = 0x406D1388;

// The exception record that passes the name of a thread to a debugger.
#pragma pack(push, 8)
struct ThreadNameRecord
{
    DWORD mType;
    LPCSTR mName;
    DWORD mThreadID;
    DWORD mFlags;
};
#pragma pack(pop)

// Without a debugger this handler continues after the exception, which then has no effect.
LONG CALLBACK ContinueAfterNaming(EXCEPTION_POINTERS* inPointers)
{
    return inPointers->ExceptionRecord->ExceptionCode == kThreadNameException ? EXCEPTION_CONTINUE_EXECUTION
                                                                              : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

std::uint32_t AllocateSlot_Impl()
{
    static_assert(kNoSlot == TLS_OUT_OF_INDEXES, "the system's own mark of no slot");
    return ::TlsAlloc();
}

void FreeSlot_Impl(std::uint32_t inSlot)
{
    ::TlsFree(inSlot);
}

void* GetSlotValue_Impl(std::uint32_t inSlot)
{
    return ::TlsGetValue(inSlot);
}

void SetSlotValue_Impl(std::uint32_t inSlot, void* inValue)
{
    ::TlsSetValue(inSlot, inValue);
}

void NameThread_Impl(const char* inName)
{
    const ThreadNameRecord record = {0x1000, inName, ::GetCurrentThreadId(), 0};
    PVOID const handler = ::AddVectoredExceptionHandler(1, &ContinueAfterNaming);
    if (handler == nullptr) {
        return; // without a handler the exception would terminate the process
    }
    ::RaiseException(kThreadNameException, 0, sizeof(record) / sizeof(ULONG_PTR),
                     reinterpret_cast<const ULONG_PTR*>(&record));
    ::RemoveVectoredExceptionHandler(handler);
}

} // namespace Platform
} // namespace ThreadManager
} // namespace ORL
