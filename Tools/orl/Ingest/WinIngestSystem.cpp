#include "IngestSystem.h"
#include "Text.h"

#include <ORLPathUtils.h>

#include <cwchar>
#include <windows.h>

#include <winioctl.h>

namespace orl {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::wstring Wide(const UTF16String& inText)
{
    return std::wstring(inText.begin(), inText.end());
}

UTF16String Units(const std::wstring& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

bool IsDotEntry(const wchar_t* inName)
{
    return std::wcscmp(inName, L".") == 0 || std::wcscmp(inName, L"..") == 0;
}

ORL::Result ResultOf(DWORD inError)
{
    switch (inError) {
    case ERROR_SUCCESS: return ORL::kSuccess;
    case ERROR_FILE_NOT_FOUND: return ORL::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY: return ORL::kPathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT: return ORL::kAccessDenied;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return ORL::kDiskFull;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
    case ERROR_DIR_NOT_EMPTY: return ORL::kAlreadyExists;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return ORL::kSharingViolation;
    default: return ORL::kGeneralFailure;
    }
}

ORL::Result Done(BOOL inAnswer)
{
    return ResultOf(inAnswer != FALSE ? static_cast<DWORD>(ERROR_SUCCESS) : ::GetLastError());
}

class Handle
{
public:
    Handle(const std::wstring& inPath, DWORD inAccess, DWORD inFlags)
        : mHandle(::CreateFileW(inPath.c_str(), inAccess, kShareAll, nullptr, OPEN_EXISTING, inFlags, nullptr))
    {
    }
    ~Handle()
    {
        if (IsOpen()) {
            ::CloseHandle(mHandle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool IsOpen() const { return mHandle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return mHandle; }

private:
    const HANDLE mHandle;
};

bool SetTime(HANDLE inFile, unsigned __int64 inTime)
{
    FILETIME time;
    time.dwLowDateTime = static_cast<DWORD>(inTime);
    time.dwHighDateTime = static_cast<DWORD>(inTime >> 32);
    return ::SetFileTime(inFile, nullptr, nullptr, &time) != FALSE;
}

EntryIdentity IdentityOf(const BY_HANDLE_FILE_INFORMATION& inStatus)
{
    return {inStatus.dwVolumeSerialNumber, std::uint64_t{inStatus.nFileIndexHigh} << 32 | inStatus.nFileIndexLow};
}

// Returns the file size for a file without holes.
std::uint64_t AllocatedOf(const std::wstring& inPath, DWORD inAttributes, std::uint64_t inSize)
{
    if ((inAttributes & FILE_ATTRIBUTE_SPARSE_FILE) == 0) {
        return inSize;
    }
    DWORD high = 0;
    const DWORD low = ::GetCompressedFileSizeW(inPath.c_str(), &high);
    return low == INVALID_FILE_SIZE && ::GetLastError() != ERROR_SUCCESS ? inSize : std::uint64_t{high} << 32 | low;
}

ORL::Result QueryStatus(const std::wstring& inPath, Links inLinks, EntryStatus& outStatus)
{
    const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (inLinks == Links::kNoFollow ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
    const Handle entry(inPath, 0, flags);
    BY_HANDLE_FILE_INFORMATION status;
    if (!entry.IsOpen() || ::GetFileInformationByHandle(entry.Get(), &status) == FALSE) {
        return ResultOf(::GetLastError());
    }
    const DWORD attributes = status.dwFileAttributes;
    const bool isLink = inLinks == Links::kNoFollow && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    outStatus.mKind = isLink                                         ? EntryStatus::kLink
                      : (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryStatus::kFolder
                      : ::GetFileType(entry.Get()) == FILE_TYPE_DISK ? EntryStatus::kFile
                                                                     : EntryStatus::kOther;
    outStatus.mIdentity = IdentityOf(status);
    outStatus.mSize = std::uint64_t{status.nFileSizeHigh} << 32 | status.nFileSizeLow;
    outStatus.mAllocated = AllocatedOf(inPath, attributes, outStatus.mSize);
    outStatus.mPermissions = (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 1 : 0;
    outStatus.mTime = std::uint64_t{status.ftLastWriteTime.dwHighDateTime} << 32 | status.ftLastWriteTime.dwLowDateTime;
    return ORL::kSuccess;
}

} // namespace

// Keeps the extended path, up to 32767 units. Callers detect a replaced folder by comparing its identity.
struct HeldFolder::State
{
    std::wstring mPath; // has no trailing separator, except for the root of a volume
    EntryIdentity mIdentity;

    std::wstring PathOf(const std::wstring& inName) const
    {
        return mPath + (mPath.back() == L'\\' ? L"" : L"\\") + inName;
    }

    std::wstring PathOf(const std::string& inName) const { return PathOf(Wide(ToUTF16(inName))); }

    static ORL::Result Take(std::wstring inPath, Links inLinks, std::unique_ptr<State>& outState)
    {
        EntryStatus status;
        const ORL::Result result = QueryStatus(inPath, inLinks, status);
        if (!ORL::ResultSucceeded(result)) {
            return result;
        }
        if (status.mKind != EntryStatus::kFolder) {
            return ORL::kPathNotFound;
        }
        outState = std::make_unique<State>();
        outState->mPath = std::move(inPath);
        outState->mIdentity = status.mIdentity;
        return ORL::kSuccess;
    }
};

HeldFolder::HeldFolder() = default;
HeldFolder::~HeldFolder() = default;
HeldFolder::HeldFolder(HeldFolder&& ioOther) noexcept = default;
HeldFolder& HeldFolder::operator=(HeldFolder&& ioOther) noexcept = default;

ORL::Result HeldFolder::Open(const UTF16String& inPath, HeldFolder& outFolder)
{
    return State::Take(Wide(ORL::PathUtils::ToNormalizedPath(inPath)), Links::kFollow, outFolder.mState);
}

ORL::Result HeldFolder::OpenFolder(const std::string& inName, Links inLinks, HeldFolder& outFolder) const
{
    return State::Take(mState->PathOf(inName), inLinks, outFolder.mState);
}

const EntryIdentity& HeldFolder::Identity() const
{
    return mState->mIdentity;
}

UTF16String HeldFolder::Path() const
{
    return Units(mState->mPath);
}

UTF16String HeldFolder::PathOf(const std::string& inName) const
{
    return Units(mState->PathOf(inName));
}

ORL::Result HeldFolder::List(std::vector<std::string>& outNames) const
{
    outNames.clear();
    WIN32_FIND_DATAW entry;
    const HANDLE listing = ::FindFirstFileW(mState->PathOf(L"*").c_str(), &entry);
    if (listing == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? ORL::kSuccess
                                             : ResultOf(error); // an empty root folder, which lacks even "."
    }
    do {
        if (!IsDotEntry(entry.cFileName)) {
            outNames.push_back(ToUTF8(Units(entry.cFileName)));
        }
    } while (::FindNextFileW(listing, &entry) != FALSE);
    const DWORD error = ::GetLastError();
    ::FindClose(listing);
    return error == ERROR_NO_MORE_FILES ? ORL::kSuccess : ResultOf(error);
}

ORL::Result HeldFolder::GetStatus(const std::string& inName, Links inLinks, EntryStatus& outStatus) const
{
    return QueryStatus(mState->PathOf(inName), inLinks, outStatus);
}

ORL::Result HeldFolder::MakeFolder(const std::string& inName) const
{
    return Done(::CreateDirectoryW(mState->PathOf(inName).c_str(), nullptr));
}

ORL::Result HeldFolder::SetPermissionsOf(const std::string& inName, unsigned inPermissions) const
{
    const std::wstring path = mState->PathOf(inName);
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return ResultOf(::GetLastError());
    }
    const DWORD others = attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
    return Done(::SetFileAttributesW(path.c_str(), inPermissions != 0 ? others | FILE_ATTRIBUTE_READONLY
                                                   : others != 0      ? others
                                                                      : FILE_ATTRIBUTE_NORMAL));
}

ORL::Result HeldFolder::SetPermissions(unsigned) const
{
    return ORL::kSuccess;
}

ORL::Result HeldFolder::RenameNoReplace(const std::string& inFrom, const std::string& inTo) const
{
    return Done(::MoveFileExW(mState->PathOf(inFrom).c_str(), mState->PathOf(inTo).c_str(), MOVEFILE_WRITE_THROUGH));
}

ORL::Result HeldFolder::Remove(const std::string& inName) const
{
    return Done(::DeleteFileW(mState->PathOf(inName).c_str()));
}

ORL::Result HeldFolder::RemoveFolder(const std::string& inName) const
{
    return Done(::RemoveDirectoryW(mState->PathOf(inName).c_str()));
}

ORL::Result HeldFolder::CheckWritable() const
{
    return ORL::kSuccess;
}

ORL::Result HeldFolder::SetLastWriteTime(unsigned __int64 inTime) const
{
    const Handle folder(mState->mPath, FILE_WRITE_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
    return Done(folder.IsOpen() && SetTime(folder.Get(), inTime));
}

// Best effort: if the file system rejects the flush, name changes rely on its journal or on write-through renames.
ORL::Result HeldFolder::Sync() const
{
    const Handle folder(mState->mPath, GENERIC_WRITE, FILE_FLAG_BACKUP_SEMANTICS);
    if (folder.IsOpen()) {
        ::FlushFileBuffers(folder.Get());
    }
    return ORL::kSuccess;
}

ORL::Result HeldFolder::SyncFile(const std::string&) const
{
    return ORL::kSuccess;
}

ORL::Result HeldFolder::SyncVolume() const
{
    return ORL::kSuccess;
}

void RaiseOpenFileLimit()
{
}

// Flushing a volume requires an administrator.
bool CanSyncVolumes()
{
    return false;
}

bool IdentifyFile(ORL::File& inFile, EntryIdentity& outIdentity)
{
    BY_HANDLE_FILE_INFORMATION status;
    if (::GetFileInformationByHandle(inFile.GetPlatformFileHandle(), &status) == FALSE) {
        return false;
    }
    outIdentity = IdentityOf(status);
    return true;
}

bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime)
{
    return SetTime(ioFile.GetPlatformFileHandle(), inTime);
}

// If the file system does not support holes, they are written as zeros.
void MakeSparse(ORL::File& ioFile)
{
    DWORD count = 0;
    ::DeviceIoControl(ioFile.GetPlatformFileHandle(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &count, nullptr);
}

bool FlushFile(ORL::File& ioFile)
{
    return ::FlushFileBuffers(ioFile.GetPlatformFileHandle()) != FALSE;
}

bool PrepareSync(ORL::File& ioFile)
{
    return FlushFile(ioFile);
}

} // namespace orl
