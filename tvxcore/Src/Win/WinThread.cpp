#include <CorePlatform/Thread.h>

#include <tvxcore/Executor.h>

#include <algorithm>
#include <new>
#include <process.h>
#include <windows.h>

namespace tvxcore {
namespace threads {

unsigned long GetCurrentThreadID()
{
    return ::GetCurrentThreadId();
}

namespace Platform {

namespace {

struct Start
{
    void (*mFunction)(void*);
    void* mArgument;
};

unsigned int __stdcall RunThread(void* inStart)
{
    const Start start = *static_cast<Start*>(inStart);
    delete static_cast<Start*>(inStart);
    start.mFunction(start.mArgument);
    return 0;
}

// Looks up a function that some releases of the system lack.
template <class Function>
Function LookUp(const wchar_t* inModule, const char* inName) noexcept
{
    const HMODULE module = ::GetModuleHandleW(inModule);
    return module == nullptr ? nullptr
                             : reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, inName)));
}

// Looked up at load, not on the first call: that call may come during process exit, and the initialisation of a
// function-local static acquires locks of the C++ runtime, which a stopped thread may hold forever.
using ShutdownInProgress = BOOLEAN(WINAPI*)();
const ShutdownInProgress sIsEnding = LookUp<ShutdownInProgress>(L"ntdll.dll", "RtlDllShutdownInProgress");

} // namespace

bool StartThread_Impl(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread) noexcept
{
    Start* const start = new (std::nothrow) Start{inFunction, inArgument};
    if (start == nullptr) {
        return false;
    }
    const ThreadHandle thread = ::_beginthreadex(nullptr, 0, &RunThread, start, 0, nullptr);
    if (thread == 0) {
        delete start;
        return false;
    }
    outThread = thread;
    return true;
}

void JoinThread_Impl(ThreadHandle inThread) noexcept
{
    if (!ProcessIsEnding_Impl()) {
        ::WaitForSingleObject(reinterpret_cast<HANDLE>(inThread), INFINITE);
    }
    DetachThread_Impl(inThread);
}

void DetachThread_Impl(ThreadHandle inThread) noexcept
{
    ::CloseHandle(reinterpret_cast<HANDLE>(inThread));
}

void NameCurrentThread_Impl(const char* inName) noexcept
{
    using SetThreadDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto setDescription = LookUp<SetThreadDescription>(L"kernel32.dll", "SetThreadDescription");
    wchar_t name[256] = {};
    if (setDescription != nullptr && ::MultiByteToWideChar(CP_UTF8, 0, inName, -1, name, 256) != 0) {
        setDescription(::GetCurrentThread(), name);
    }
}

void SetCurrentThreadPriority_Impl(int inPriority) noexcept
{
    static constexpr int kPriorities[] = {THREAD_PRIORITY_IDLE,         THREAD_PRIORITY_LOWEST,
                                          THREAD_PRIORITY_BELOW_NORMAL, THREAD_PRIORITY_NORMAL,
                                          THREAD_PRIORITY_ABOVE_NORMAL, THREAD_PRIORITY_HIGHEST};
    ::SetThreadPriority(::GetCurrentThread(), kPriorities[inPriority]);
}

unsigned int ProcessorCount_Impl() noexcept
{
    return static_cast<unsigned int>(std::max<DWORD>(::GetActiveProcessorCount(ALL_PROCESSOR_GROUPS), 1));
}

unsigned int UsableProcessorCount_Impl() noexcept
{
    DWORD_PTR usable = 0;
    DWORD_PTR present = 0;
    unsigned int count = 0;
    if (::GetProcessAffinityMask(::GetCurrentProcess(), &usable, &present) != FALSE) {
        for (; usable != 0; usable &= usable - 1) {
            ++count;
        }
    }
    // A process that spans processor groups has no affinity mask.
    return count != 0 ? count : ProcessorCount_Impl();
}

void YieldThread_Impl() noexcept
{
    ::SwitchToThread();
}

bool ProcessIsEnding_Impl() noexcept
{
    return sIsEnding != nullptr && sIsEnding() != FALSE;
}

std::int64_t MonotonicNanoseconds_Impl() noexcept
{
    LARGE_INTEGER frequency{};
    LARGE_INTEGER now{};
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&now);
    // Converts in two steps, because the direct product would overflow within a day.
    constexpr std::int64_t kSecond = 1'000'000'000;
    return now.QuadPart / frequency.QuadPart * kSecond
           + now.QuadPart % frequency.QuadPart * kSecond / frequency.QuadPart;
}

} // namespace Platform
} // namespace threads
} // namespace tvxcore
