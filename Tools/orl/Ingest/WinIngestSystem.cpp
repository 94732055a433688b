#include "IngestSystem.h"
#include "Text.h"

#include <ORLPathUtils.h>

#include <cwchar>
#include <windows.h>

namespace orl {

namespace {

std::wstring Wide(const UTF16String& inText)
{
    return std::wstring(inText.begin(), inText.end());
}

bool IsItselfOrAbove(const wchar_t* inName)
{
    return std::wcscmp(inName, L".") == 0 || std::wcscmp(inName, L"..") == 0;
}

} // namespace

bool IdentifyFolder(const UTF16String& inFolder, FolderIdentity& outIdentity)
{
    const HANDLE folder =
        ::CreateFileW(Wide(inFolder).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE) {
        return false;
    }
    BY_HANDLE_FILE_INFORMATION status;
    const bool isKnown = ::GetFileInformationByHandle(folder, &status) != FALSE
                         && (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    ::CloseHandle(folder);
    if (isKnown) {
        outIdentity = {status.dwVolumeSerialNumber,
                       std::uint64_t{status.nFileIndexHigh} << 32 | status.nFileIndexLow};
    }
    return isKnown;
}

bool ListFolder(const UTF16String& inFolder, std::vector<std::string>& outPaths)
{
    outPaths.clear();
    const UTF16String stem = ORL::PathUtils::AddTrailingSlash(inFolder);
    WIN32_FIND_DATAW entry;
    const HANDLE listing = ::FindFirstFileW((Wide(stem) + L"*").c_str(), &entry);
    if (listing == INVALID_HANDLE_VALUE) {
        return ::GetLastError() == ERROR_FILE_NOT_FOUND; // the root of a volume that holds nothing
    }
    do {
        if (!IsItselfOrAbove(entry.cFileName)) {
            const std::wstring name(entry.cFileName);
            outPaths.push_back(HostTextOf(stem + UTF16String(name.begin(), name.end())));
        }
    } while (::FindNextFileW(listing, &entry) != FALSE);
    const bool isWhole = ::GetLastError() == ERROR_NO_MORE_FILES;
    ::FindClose(listing);
    return isWhole;
}

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
