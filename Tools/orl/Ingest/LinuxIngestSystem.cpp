#include "Failure.h"
#include "IngestSystem.h"
#include "LinuxIngestCalls.h"

#include <ORLHostPath.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <stdio.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace orl {

IngestCalls sIngestCalls = {
    [](int inFolder, const char* inName, int inFlags) { return ::openat(inFolder, inName, inFlags); },
    [](DIR* inFolder) { return ::readdir(inFolder); },
    [](int inFolder, const char* inName, struct stat* outStatus, int inFlags) {
        return ::fstatat(inFolder, inName, outStatus, inFlags);
    },
    [](int inFolder, const char* inName) { return ::mkdirat(inFolder, inName, 0777); },
    [](int inFolder, const char* inFrom, const char* inTo, unsigned inFlags) {
        return ::renameat2(inFolder, inFrom, inFolder, inTo, inFlags);
    },
    [](int inFolder, const char* inFrom, const char* inTo) { return ::linkat(inFolder, inFrom, inFolder, inTo, 0); },
    [](int inFolder, const char* inName, int inFlags) { return ::unlinkat(inFolder, inName, inFlags); },
    [](int inFile, const struct timespec* inTimes) { return ::futimens(inFile, inTimes); },
    [](int inFile) { return ::fdatasync(inFile); },
    [](int inFile) { return ::fsync(inFile); },
    [](int inFile) { return ::syncfs(inFile); },
    [](int inFile, unsigned inMode) { return ::fchmod(inFile, inMode); },
    [](int inFolder, const char* inName, int inAccess) { return ::faccessat(inFolder, inName, inAccess, AT_EACCESS); },
};

namespace {

constexpr long long kSecondsTo1970 = 11644473600;
constexpr long long kUnitsPerSecond = 10000000;

constexpr unsigned kPermissionBits = 0777; // the others (set-user-ID ...) would grant the new owner's rights
constexpr unsigned kReadByOwner = 0400;
constexpr unsigned kListByOwner = 0500;

int DescriptorOf(ORL::File& ioFile)
{
    return *static_cast<const int*>(ioFile.GetPlatformFileHandle());
}

ORL::Result ResultOf(int inErrno)
{
    switch (inErrno) {
    case 0: return ORL::kSuccess;
    case ENOENT: return ORL::kFileNotFound;
    case ENOTDIR:
    case ELOOP: return ORL::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS: return ORL::kAccessDenied;
    case ENOSPC:
    case EDQUOT: return ORL::kDiskFull;
    case EEXIST:
    case ENOTEMPTY: return ORL::kAlreadyExists;
    case EBUSY:
    case ETXTBSY: return ORL::kSharingViolation;
    case EMFILE:
    case ENFILE:
    case ENOMEM: return kOutOfResources;
    default: return ORL::kGeneralFailure;
    }
}

ORL::Result Done(int inAnswer)
{
    return ResultOf(inAnswer < 0 ? errno : 0);
}

int SetTimes(int inFile, unsigned __int64 inTime)
{
    struct timespec time
    {
    };
    time.tv_sec = static_cast<std::time_t>(static_cast<long long>(inTime / kUnitsPerSecond) - kSecondsTo1970);
    time.tv_nsec = static_cast<long>(inTime % kUnitsPerSecond * 100);
    const struct timespec times[] = {time, time};
    return sIngestCalls.mFUTimens(inFile, times);
}

bool IsDotEntry(const char* inName)
{
    return std::strcmp(inName, ".") == 0 || std::strcmp(inName, "..") == 0;
}

// readdir returns null at the end and on an error; only errno tells the two apart.
ORL::Result ReadNames(DIR* inFolder, std::vector<std::string>& outNames)
{
    for (;;) {
        errno = 0;
        const dirent* const entry = sIngestCalls.mReadDir(inFolder);
        if (entry == nullptr) {
            return ResultOf(errno);
        }
        if (!IsDotEntry(entry->d_name)) {
            outNames.emplace_back(entry->d_name);
        }
    }
}

bool IsTrusted(const struct stat& inStatus)
{
    return (inStatus.st_uid == ::geteuid() || inStatus.st_uid == 0) && (inStatus.st_mode & S_IWOTH) == 0;
}

EntryStatus StatusOf(const struct stat& inStatus)
{
    EntryStatus status;
    status.mKind = S_ISREG(inStatus.st_mode)   ? EntryStatus::kFile
                   : S_ISDIR(inStatus.st_mode) ? EntryStatus::kFolder
                   : S_ISLNK(inStatus.st_mode) ? EntryStatus::kLink
                                               : EntryStatus::kOther;
    status.mIdentity = {inStatus.st_dev, inStatus.st_ino};
    status.mSize = static_cast<std::uint64_t>(inStatus.st_size);
    status.mAllocated = static_cast<std::uint64_t>(inStatus.st_blocks) * 512;
    status.mTime = static_cast<unsigned __int64>((inStatus.st_mtim.tv_sec + kSecondsTo1970) * kUnitsPerSecond
                                                 + inStatus.st_mtim.tv_nsec / 100);
    status.mIsTrusted = IsTrusted(inStatus);
    status.mPermissions =
        (inStatus.st_mode & kPermissionBits) | (S_ISDIR(inStatus.st_mode) ? kListByOwner : kReadByOwner);
    return status;
}

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// Owns an open file, or represents a failed open.
class OwnedFile
{
public:
    explicit OwnedFile(int inFile) noexcept : mFile(inFile) {}
    OwnedFile(OwnedFile&& ioOther) noexcept : mFile(ioOther.Release()) {}
    ~OwnedFile()
    {
        if (mFile >= 0) {
            ::close(mFile);
        }
    }
    OwnedFile& operator=(OwnedFile&&) = delete;

    explicit operator bool() const noexcept { return mFile >= 0; }
    int Get() const noexcept { return mFile; }
    int Release() noexcept { return std::exchange(mFile, -1); }

private:
    int mFile;
};

} // namespace

struct HeldFolder::State
{
    explicit State(OwnedFile&& ioFile) : mFile(std::move(ioFile)) {}

    static ORL::Result Take(OwnedFile&& ioFile, std::unique_ptr<State>& outState)
    {
        if (!ioFile) {
            return ResultOf(errno);
        }
        struct stat status;
        auto state = std::make_unique<State>(std::move(ioFile));
        if (sIngestCalls.mFStatAt(state->File(), "", &status, AT_EMPTY_PATH) != 0) {
            return ResultOf(errno);
        }
        state->mIdentity = {status.st_dev, status.st_ino};
        outState = std::move(state);
        return ORL::kSuccess;
    }

    int File() const noexcept { return mFile.Get(); }

    const OwnedFile mFile;
    EntryIdentity mIdentity;
};

HeldFolder::HeldFolder() = default;
HeldFolder::~HeldFolder() = default;
HeldFolder::HeldFolder(HeldFolder&& ioOther) noexcept = default;
HeldFolder& HeldFolder::operator=(HeldFolder&& ioOther) noexcept = default;

ORL::Result HeldFolder::Open(const UTF16String& inPath, HeldFolder& outFolder)
{
    std::string path;
    const ORL::Result result = ORL::PathUtils::ToHostPath(inPath, path);
    return ORL::ResultSucceeded(result)
               ? State::Take(OwnedFile(sIngestCalls.mOpenAt(AT_FDCWD, path.c_str(), kFolderFlags)), outFolder.mState)
               : result;
}

ORL::Result HeldFolder::OpenFolder(const std::string& inName, Links inLinks, HeldFolder& outFolder) const
{
    const int flags = kFolderFlags | (inLinks == Links::kNoFollow ? O_NOFOLLOW : 0);
    return State::Take(OwnedFile(sIngestCalls.mOpenAt(mState->File(), inName.c_str(), flags)), outFolder.mState);
}

const EntryIdentity& HeldFolder::Identity() const
{
    return mState->mIdentity;
}

// A /proc link refers to the open folder itself, not to a name.
UTF16String HeldFolder::Path() const
{
    return ORL::PathUtils::FromHostPath("/proc/self/fd/" + std::to_string(mState->File()));
}

UTF16String HeldFolder::PathOf(const std::string& inName) const
{
    return ORL::PathUtils::FromHostPath("/proc/self/fd/" + std::to_string(mState->File()) + "/" + inName);
}

ORL::Result HeldFolder::List(std::vector<std::string>& outNames) const
{
    outNames.clear();
    OwnedFile file(sIngestCalls.mOpenAt(mState->File(), ".", kFolderFlags));
    DIR* const folder = file ? ::fdopendir(file.Get()) : nullptr;
    if (folder == nullptr) {
        return ResultOf(errno);
    }
    file.Release(); // descriptor; closed with the folder
    const ORL::Result result = ReadNames(folder, outNames);
    ::closedir(folder);
    return result;
}

ORL::Result HeldFolder::GetStatus(const std::string& inName, Links inLinks, EntryStatus& outStatus) const
{
    struct stat status;
    const int flags = inLinks == Links::kNoFollow ? AT_SYMLINK_NOFOLLOW : 0;
    if (sIngestCalls.mFStatAt(mState->File(), inName.c_str(), &status, flags) != 0) {
        return ResultOf(errno);
    }
    outStatus = StatusOf(status);
    return ORL::kSuccess;
}

ORL::Result HeldFolder::MakeFolder(const std::string& inName) const
{
    return Done(sIngestCalls.mMakeDirAt(mState->File(), inName.c_str()));
}

ORL::Result HeldFolder::SetPermissionsOf(const std::string& inName, unsigned inPermissions) const
{
    const OwnedFile file(
        sIngestCalls.mOpenAt(mState->File(), inName.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file ? Done(sIngestCalls.mFChMod(file.Get(), inPermissions)) : ResultOf(errno);
}

ORL::Result HeldFolder::SetPermissions(unsigned inPermissions) const
{
    return Done(sIngestCalls.mFChMod(mState->File(), inPermissions));
}

// Each of the three methods fails if the name is taken. The last method is for file systems that support neither of
// the other two; it checks the name first, so it is not atomic.
ORL::Result HeldFolder::RenameNoReplace(const std::string& inFrom, const std::string& inTo) const
{
    const char* const from = inFrom.c_str();
    const char* const to = inTo.c_str();
    if (sIngestCalls.mRenameAt(mState->File(), from, to, RENAME_NOREPLACE) == 0) {
        return ORL::kSuccess;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
        return ResultOf(errno);
    }
    if (sIngestCalls.mLinkAt(mState->File(), from, to) == 0) {
        return Done(sIngestCalls.mUnlinkAt(mState->File(), from, 0));
    }
    if (errno != EPERM && errno != ENOSYS && errno != EOPNOTSUPP) {
        return ResultOf(errno);
    }
    struct stat status;
    if (sIngestCalls.mFStatAt(mState->File(), to, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return ORL::kAlreadyExists;
    }
    return errno == ENOENT ? Done(sIngestCalls.mRenameAt(mState->File(), from, to, 0)) : ResultOf(errno);
}

ORL::Result HeldFolder::Remove(const std::string& inName) const
{
    return Done(sIngestCalls.mUnlinkAt(mState->File(), inName.c_str(), 0));
}

ORL::Result HeldFolder::RemoveFolder(const std::string& inName) const
{
    return Done(sIngestCalls.mUnlinkAt(mState->File(), inName.c_str(), AT_REMOVEDIR));
}

ORL::Result HeldFolder::CheckWritable() const
{
    return Done(sIngestCalls.mFAccessAt(mState->File(), ".", W_OK | X_OK));
}

ORL::Result HeldFolder::SetLastWriteTime(unsigned __int64 inTime) const
{
    return Done(SetTimes(mState->File(), inTime));
}

ORL::Result HeldFolder::Sync() const
{
    return Done(sIngestCalls.mFSync(mState->File()));
}

ORL::Result HeldFolder::SyncFile(const std::string& inName) const
{
    const OwnedFile file(sIngestCalls.mOpenAt(mState->File(), inName.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    return file ? Done(sIngestCalls.mFSync(file.Get())) : ResultOf(errno);
}

ORL::Result HeldFolder::SyncVolume() const
{
    return Done(sIngestCalls.mSyncFs(mState->File()));
}

void RaiseOpenFileLimit()
{
    struct rlimit limit
    {
    };
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

bool CanSyncVolumes()
{
    return true;
}

bool IdentifyFile(ORL::File& inFile, EntryIdentity& outIdentity)
{
    struct stat status;
    if (sIngestCalls.mFStatAt(DescriptorOf(inFile), "", &status, AT_EMPTY_PATH) != 0) {
        return false;
    }
    outIdentity = {status.st_dev, status.st_ino};
    return true;
}

bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime)
{
    return SetTimes(DescriptorOf(ioFile), inTime) == 0;
}

// On Linux any file may have holes.
void MakeSparse(ORL::File&)
{
}

bool FlushFile(ORL::File& ioFile)
{
    return sIngestCalls.mFDataSync(DescriptorOf(ioFile)) == 0;
}

bool PrepareSync(ORL::File&)
{
    return true;
}

} // namespace orl
