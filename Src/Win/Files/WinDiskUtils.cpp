#include <Platform/Disks.h>

#include "../Calls/WinText.h"

#include <shlwapi.h>
#include <windows.h>

namespace ORL {
namespace DiskUtils {
namespace Platform {

using ORL::Win::AsWide;

SystemError GetSectorSize_Impl(const Volume& inVolume, unsigned int& outBytesPerSector)
{
    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    DWORD freeClusters = 0;
    DWORD clusters = 0;
    const BOOL done = ::GetDiskFreeSpaceW(AsWide(inVolume.mRoot.c_str()), &sectorsPerCluster, &bytesPerSector,
                                          &freeClusters, &clusters);
    outBytesPerSector = bytesPerSector;
    return done ? SystemErrors::kNoError : ::GetLastError();
}

SystemError GetFreeSpace_Impl(const Volume& inVolume, unsigned __int64& outBytes)
{
    ULARGE_INTEGER freeToCaller;
    if (!::GetDiskFreeSpaceExW(AsWide(inVolume.mRoot.c_str()), &freeToCaller, nullptr, nullptr)) {
        return ::GetLastError();
    }
    outBytes = freeToCaller.QuadPart;
    return SystemErrors::kNoError;
}

SystemError GetFileSystemName_Impl(const Volume& inVolume, UTF16String& outName)
{
    unsigned short name[512] = {};
    if (!::GetVolumeInformationW(AsWide(inVolume.mRoot.c_str()), nullptr, 0, nullptr, nullptr, nullptr, AsWide(name),
                                 sizeof(name) / sizeof(name[0]))) {
        return ::GetLastError();
    }
    outName = name;
    return SystemErrors::kNoError;
}

bool IsRoot_Impl(const UTF16String& inPath)
{
    return ::PathIsRootW(AsWide(inPath.c_str())) != FALSE;
}

} // namespace Platform
} // namespace DiskUtils
} // namespace ORL
