#include <ProcessThreads.h>

#include <windows.h>

#include <tlhelp32.h>

namespace ORLTest {

unsigned int CountProcessThreads()
{
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread{};
    thread.dwSize = sizeof(thread);
    unsigned int count = 0;
    for (BOOL isThere = ::Thread32First(snapshot, &thread); isThere != FALSE;
         isThere = ::Thread32Next(snapshot, &thread)) {
        count += thread.th32OwnerProcessID == ::GetCurrentProcessId() ? 1 : 0;
    }
    ::CloseHandle(snapshot);
    return count;
}

} // namespace ORLTest
