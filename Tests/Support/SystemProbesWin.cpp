#include <SystemProbes.h>

#include <windows.h>

namespace ORLTest {

bool RunsOnEmulator()
{
    const HMODULE module = ::GetModuleHandleA("ntdll.dll");
    return module != nullptr && ::GetProcAddress(module, "wine_get_version") != nullptr;
}

} // namespace ORLTest
