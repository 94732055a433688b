#include <SystemProbes.h>

#include <windows.h>

namespace ORLTest {

bool RunsOnEmulator()
{
    const HMODULE module = ::GetModuleHandleA("ntdll.dll");
    return module != nullptr && ::GetProcAddress(module, "wine_get_version") != nullptr;
}

bool SystemAcceptsLongPlainPaths()
{
    using Ask = BOOLEAN(WINAPI*)();
    const HMODULE module = ::GetModuleHandleA("ntdll.dll");
    const FARPROC ask = module != nullptr ? ::GetProcAddress(module, "RtlAreLongPathsEnabled") : nullptr;
    return RunsOnEmulator() || (ask != nullptr && reinterpret_cast<Ask>(reinterpret_cast<void*>(ask))() != FALSE);
}

unsigned OpenHandles()
{
    DWORD count = 0;
    return ::GetProcessHandleCount(::GetCurrentProcess(), &count) != FALSE ? static_cast<unsigned>(count) : 0;
}

} // namespace ORLTest
