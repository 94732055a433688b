#include <Platform/Processes.h>

#include <windows.h>

#include <psapi.h>

namespace ORL {
namespace Process {
namespace Platform {

SystemError ListProcesses_Impl(unsigned int* outIdentifiers, std::size_t inCapacity, std::size_t& outCount)
{
    static_assert(sizeof(DWORD) == sizeof(*outIdentifiers));
    DWORD given = 0;
    if (::EnumProcesses(reinterpret_cast<DWORD*>(outIdentifiers), static_cast<DWORD>(inCapacity * sizeof(DWORD)),
                        &given)
        == FALSE) {
        return ::GetLastError();
    }
    outCount = given / sizeof(DWORD);
    return SystemErrors::kNoError;
}

ProcessHandle OpenProcess_Impl(unsigned int inIdentifier)
{
    return ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, inIdentifier);
}

// Queries the first module of the process, which is its executable.
bool GetExecutableName_Impl(ProcessHandle inProcess, unsigned int, UTF16String& outName)
{
    HMODULE module = nullptr;
    DWORD needed = 0;
    if (inProcess == nullptr || ::EnumProcessModules(inProcess, &module, sizeof(module), &needed) == FALSE) {
        return false;
    }
    constexpr DWORD kCapacity = 520;
    wchar_t name[kCapacity] = {};
    ::GetModuleBaseNameW(inProcess, module, name, kCapacity);
    outName = reinterpret_cast<const unsigned short*>(name);
    return true;
}

void CloseProcess_Impl(ProcessHandle inProcess)
{
    ::CloseHandle(inProcess);
}

} // namespace Platform
} // namespace Process
} // namespace ORL
