#include <Platform/Directory.h>

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Files/LinuxFile.h"
#include "../Paths/LinuxHostPath.h"
#include "../Paths/LinuxNames.h"
#include "../Paths/LinuxOpenFolder.h"

#include <Platform/Paths.h>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <utility>

namespace ORL {
namespace Directories {
namespace Platform {

using namespace ORL::Linux;
using namespace SystemErrors;

struct Listing
{
    explicit Listing(const char* inPath) : mFolder(inPath) {}

    EntryKind KindOf(const dirent64& inEntry);
    SystemError ReadEntry(Entry& outEntry);

    OpenFolder mFolder;
    bool mIsSuspended = false;
    std::deque<Entry> mKept; // entries of a suspended listing
    SystemError mEndOfKept = kErrorNoMoreFiles;
    // Without search permission a folder can be listed, but its entries cannot be queried.
    enum { kNotAsked, kYes, kNo } mMaySearch = kNotAsked;
};

// Queries the search permission only once, because the result applies to all entries.
EntryKind Listing::KindOf(const dirent64& inEntry)
{
    if (inEntry.d_type == DT_UNKNOWN || inEntry.d_type == DT_LNK) {
        return EntryKind::kUnknown;
    }
    if (inEntry.d_type != DT_DIR) {
        return EntryKind::kOther;
    }
    if (mMaySearch == kNotAsked) {
        struct statx status;
        const int answer = System().mStatx(mFolder.File(), inEntry.d_name, AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status);
        mMaySearch = answer == 0 ? kYes : kNo;
    }
    return mMaySearch == kYes ? EntryKind::kDirectory : EntryKind::kUnknown;
}

SystemError OpenListing_Impl(const UTF16String& inDirectory, Listing*& outListing)
{
    outListing = nullptr;
    HostPath path;
    const SystemError error = ResolveToUsablePath(inDirectory, path);
    if (error != kNoError) {
        return error;
    }
    auto listing = std::make_unique<Listing>(path.mPath.c_str());
    if (!listing->mFolder.IsOpen()) {
        // The operation concerns the folder's entries, so a missing folder is reported as a missing path.
        return errno == ENOENT ? kErrorPathNotFound : SystemErrorFromErrno(errno, path.mPath);
    }
    outListing = listing.release();
    return kNoError;
}

SystemError Listing::ReadEntry(Entry& outEntry)
{
    const dirent64* entry = mFolder.Entries().Next();
    if (entry == nullptr) {
        const int failure = mFolder.Entries().Failure();
        return failure != 0 ? SystemErrorFromErrno(failure) : kErrorNoMoreFiles;
    }
    outEntry.mName.clear();
    AppendUnitsOfName(outEntry.mName, entry->d_name, std::strlen(entry->d_name));
    outEntry.mKind = KindOf(*entry);
    return kNoError;
}

SystemError NextEntry_Impl(Listing& ioListing, Entry& outEntry)
{
    if (!ioListing.mIsSuspended) {
        return ioListing.ReadEntry(outEntry);
    }
    if (ioListing.mKept.empty()) {
        return ioListing.mEndOfKept;
    }
    outEntry = std::move(ioListing.mKept.front());
    ioListing.mKept.pop_front();
    return kNoError;
}

void Suspend_Impl(Listing& ioListing)
{
    if (ioListing.mIsSuspended) {
        return;
    }
    ioListing.mIsSuspended = true;
    Entry entry;
    SystemError error = ioListing.ReadEntry(entry);
    for (; error == kNoError; error = ioListing.ReadEntry(entry)) {
        ioListing.mKept.push_back(std::move(entry));
        entry = Entry();
    }
    ioListing.mEndOfKept = error;
    ioListing.mFolder.Close();
}

void CloseListing_Impl(Listing* inListing)
{
    delete inListing;
}

namespace {

bool GetIdentity(const UTF16String& inPath, struct statx& outStatus)
{
    HostPath path;
    return ResolveToUsablePath(inPath, path) == kNoError
           && System().mStatx(AT_FDCWD, path.mPath.c_str(), 0, STATX_TYPE | STATX_INO, &outStatus) == 0;
}

} // namespace

bool IsSameDirectory_Impl(const UTF16String& inOne, const UTF16String& inOther)
{
    struct statx one;
    struct statx other;
    return GetIdentity(inOne, one) && GetIdentity(inOther, other) && one.stx_ino == other.stx_ino
           && one.stx_dev_major == other.stx_dev_major && one.stx_dev_minor == other.stx_dev_minor;
}

namespace {

// In an append-only folder, files can be created but not deleted: the test file would remain forever.
bool IsAppendOnly(const std::string& inFolder)
{
    struct statx status;
    return System().mStatx(AT_FDCWD, inFolder.c_str(), 0, STATX_TYPE, &status) == 0
           && (status.stx_attributes & STATX_ATTR_APPEND) != 0;
}

} // namespace

// Unlinks the name before it writes the byte, so that no other process finds the file and no crash leaves it behind. An
// unnamed file (O_TMPFILE) would not test whether the folder accepts and removes names.
bool WriteProbe_Impl(const UTF16String& inPath)
{
    HostPath path;
    if (ResolveToUsablePath(inPath, path) != kNoError
        || IsAppendOnly(path.mPath.substr(0, path.mPath.rfind('/') + 1))) {
        return false;
    }
    const Descriptor file = OpenByPath(path.mPath.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    return file && System().mUnlink(path.mPath.c_str()) == 0 && System().mPWrite(file.Get(), "X", 1, 0) == 1;
}

// Returns 0 or an HRESULT, as on Windows; the only failure that it reports is a missing path.
unsigned long PrepareForWrite_Impl(const UTF16String& inPath)
{
    constexpr unsigned long kPathNotFoundStatus = 0x80070003;
    return PathUtils::Platform::PreparePathForWrite_Impl(inPath) ? 0 : kPathNotFoundStatus;
}

namespace {

// Fails if another handle of the folder does not share delete access, or if the folder is read-only. If the name is not
// a folder, lets the removal itself fail.
SystemError ShareFolderForDelete(const HostPath& inPath, EntryShare& outShare)
{
    const std::string name =
        inPath.mHasTrailingSeparator ? inPath.mPath.substr(0, inPath.mPath.size() - 1) : inPath.mPath;
    struct stat status;
    if (GetEntryStatus(name, status) != kNoError || !S_ISDIR(status.st_mode)) {
        return kNoError;
    }
    const SystemError error = outShare.Enter(name, status, kShareDelete, kShareAll);
    return error != kNoError ? error : IsReadOnly(status) ? kErrorAccessDenied : kNoError;
}

} // namespace

SystemError RemoveDirectory_Impl(const UTF16String& inPath)
{
    HostPath path;
    const SystemError error = ResolveToUsablePath(inPath, path);
    if (error != kNoError) {
        return error;
    }
    // The folder of a drive is not an entry that can be removed.
    if (path.mIsRoot) {
        return kErrorAccessDenied;
    }
    EntryShare share;
    const SystemError refusal = ShareFolderForDelete(path, share);
    if (refusal != kNoError) {
        return refusal;
    }
    return System().mRemoveDir(path.mPath.c_str()) == 0
               ? kNoError
               : SystemErrorFromErrno(errno, path.mPath, PathOperation::kRemoveFolder);
}

} // namespace Platform
} // namespace Directories
} // namespace ORL
