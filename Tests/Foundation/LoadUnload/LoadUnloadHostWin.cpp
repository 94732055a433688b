#include "LoadUnloadHost.h"

#include <string>

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

namespace LoadUnload {

void* Load(const char* inFileName)
{
    return ::LoadLibraryA(inFileName);
}

bool Unload(void* inLibrary)
{
    return ::FreeLibrary(static_cast<HMODULE>(inLibrary)) != FALSE;
}

bool IsAnyOfOursLoaded()
{
    for (const char* name : {"libORLFoundation-" ORL_ABI ".dll", "libtvxcore-" ORL_ABI ".dll",
                             "libtvxmediatypes-" ORL_ABI ".dll", "libCRV-" ORL_ABI ".dll"}) {
        if (::GetModuleHandleA(name) != nullptr) {
            return true;
        }
    }
    return false;
}

void* Find(void* inLibrary, const char* inName)
{
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(inLibrary), inName));
}

namespace {

std::size_t CountThreads()
{
    std::size_t count = 0;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL found = ::Thread32First(snapshot, &entry); found != FALSE; found = ::Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == ::GetCurrentProcessId() ? 1 : 0;
    }
    ::CloseHandle(snapshot);
    return count;
}

} // namespace

Footprint Measure()
{
    Footprint footprint;
    PROCESS_MEMORY_COUNTERS_EX counters{};
    ::GetProcessMemoryInfo(::GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                           sizeof(counters));
    footprint.mMemory = counters.PrivateUsage;
    HMODULE modules[512];
    DWORD bytes = 0;
    ::EnumProcessModules(::GetCurrentProcess(), modules, sizeof(modules), &bytes);
    footprint.mMappings = bytes / sizeof(HMODULE);
    footprint.mThreads = CountThreads();
    DWORD handles = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &handles);
    footprint.mHandles = handles;
    return footprint;
}

} // namespace LoadUnload
