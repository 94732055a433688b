#include "IngestSystem.h"

#include <windows.h>

namespace orl {

bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime)
{
    FILETIME time;
    time.dwLowDateTime = static_cast<DWORD>(inTime);
    time.dwHighDateTime = static_cast<DWORD>(inTime >> 32);
    return ::SetFileTime(ioFile.GetPlatformFileHandle(), nullptr, nullptr, &time) != FALSE;
}

bool FlushFile(ORL::File& ioFile)
{
    return ::FlushFileBuffers(ioFile.GetPlatformFileHandle()) != FALSE;
}

// To flush a volume takes an administrator, so each file is flushed when it is written. The file system's journal keeps the order
// of names.
bool SettleFile(ORL::File& ioFile)
{
    return FlushFile(ioFile);
}

bool FlushGroup(const UTF16String&, const std::vector<UTF16String>&)
{
    return true;
}

} // namespace orl
