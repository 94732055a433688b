#include <Platform/Directory.h>

#include "../Calls/WinText.h"

#include <memory>
#include <shlobj.h>
#include <windows.h>

namespace ORL {
namespace Directories {
namespace Platform {

using ORL::Win::AsUnits;
using ORL::Win::AsWide;

struct Listing
{
    HANDLE mHandle;
    WIN32_FIND_DATAW mNext;
    SystemError mEnd; // why there is no next entry, or 0 if there is one
};

namespace {

bool IsDotEntry(const wchar_t* inName)
{
    return inName[0] == L'.' && (inName[1] == 0 || (inName[1] == L'.' && inName[2] == 0));
}

// A reparse point may refer to a directory, a file or nothing.
EntryKind KindOf(DWORD inAttributes)
{
    if ((inAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return EntryKind::kUnknown;
    }
    return (inAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::kDirectory : EntryKind::kOther;
}

bool GetIdentity(const UTF16String& inPath, BY_HANDLE_FILE_INFORMATION& outInformation)
{
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = ::CreateFileW(AsWide(inPath.c_str()), 0, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    const bool isKnown = ::GetFileInformationByHandle(handle, &outInformation) != FALSE;
    ::CloseHandle(handle);
    return isKnown;
}

} // namespace

SystemError OpenListing_Impl(const UTF16String& inDirectory, Listing*& outListing)
{
    outListing = nullptr;
    UTF16String pattern = inDirectory;
    if (!pattern.empty() && pattern.back() != '\\') {
        pattern += '\\';
    }
    pattern += '*';
    std::unique_ptr<Listing> listing(new Listing{INVALID_HANDLE_VALUE, {}, SystemErrors::kNoError});
    listing->mHandle = ::FindFirstFileW(AsWide(pattern.c_str()), &listing->mNext);
    if (listing->mHandle == INVALID_HANDLE_VALUE) {
        return ::GetLastError();
    }
    outListing = listing.release();
    return SystemErrors::kNoError;
}

SystemError NextEntry_Impl(Listing& ioListing, Entry& outEntry)
{
    while (ioListing.mEnd == SystemErrors::kNoError) {
        const WIN32_FIND_DATAW current = ioListing.mNext;
        ioListing.mEnd =
            ::FindNextFileW(ioListing.mHandle, &ioListing.mNext) ? SystemErrors::kNoError : ::GetLastError();
        if (!IsDotEntry(current.cFileName)) {
            outEntry.mName = AsUnits(current.cFileName);
            outEntry.mKind = KindOf(current.dwFileAttributes);
            return SystemErrors::kNoError;
        }
    }
    return ioListing.mEnd;
}

// Does nothing: a process can have millions of handles.
void Suspend_Impl(Listing&)
{
}

void CloseListing_Impl(Listing* inListing)
{
    if (inListing != nullptr) {
        ::FindClose(inListing->mHandle);
        delete inListing;
    }
}

bool IsSameDirectory_Impl(const UTF16String& inOne, const UTF16String& inOther)
{
    BY_HANDLE_FILE_INFORMATION one;
    BY_HANDLE_FILE_INFORMATION other;
    return GetIdentity(inOne, one) && GetIdentity(inOther, other)
           && one.dwVolumeSerialNumber == other.dwVolumeSerialNumber && one.nFileIndexHigh == other.nFileIndexHigh
           && one.nFileIndexLow == other.nFileIndexLow;
}

bool WriteProbe_Impl(const UTF16String& inPath)
{
    const HANDLE handle = ::CreateFileW(AsWide(inPath.c_str()), GENERIC_READ | GENERIC_WRITE | DELETE,
                                        FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                        FILE_FLAG_DELETE_ON_CLOSE | FILE_ATTRIBUTE_HIDDEN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const bool isWritten = ::WriteFile(handle, "X", 1, &written, nullptr) != FALSE;
    ::CloseHandle(handle);
    return isWritten;
}

unsigned long PrepareForWrite_Impl(const UTF16String& inPath)
{
    return static_cast<unsigned long>(
        ::SHPathPrepareForWriteW(nullptr, nullptr, AsWide(inPath.c_str()), SHPPFW_DIRCREATE));
}

// Treats every result of RemoveDirectoryW except 1 as a failure.
SystemError RemoveDirectory_Impl(const UTF16String& inPath)
{
    return ::RemoveDirectoryW(AsWide(inPath.c_str())) == 1 ? SystemErrors::kNoError : ::GetLastError();
}

} // namespace Platform
} // namespace Directories
} // namespace ORL
