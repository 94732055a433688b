#include "LinuxRegistryFolder.h"

#include "../../Calls/LinuxErrors.h"
#include "../../Calls/SystemCalls.h"
#include "../../Paths/LinuxOpenFolder.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <unistd.h>

namespace ORL {
namespace Registry {
namespace Linux {

using ORL::Linux::System;
using ORL::Linux::SystemErrorFromErrno;
using namespace SystemErrors;

namespace {

// Never returns 2 or 3, which mean that a key is missing.
SystemError StoreError(int inErrno)
{
    return inErrno == ENOENT || inErrno == ENOTDIR ? kErrorRegistryIoFailed : SystemErrorFromErrno(inErrno);
}

bool StatusOf(const std::string& inPath, struct statx& outStatus) noexcept
{
    constexpr unsigned kMask = STATX_TYPE | STATX_MODE | STATX_UID | STATX_INO;
    return System().mStatx(AT_FDCWD, inPath.c_str(), AT_SYMLINK_NOFOLLOW, kMask, &outStatus) == 0;
}

// Users other than root trust only their own or root's files and folders; nobody trusts world-writable ones.
bool IsTrusted(const struct statx& inStatus)
{
    const ::uid_t user = ::geteuid();
    const bool isOurs = user == 0 || inStatus.stx_uid == 0 || inStatus.stx_uid == user;
    return isOurs && (inStatus.stx_mode & S_IWOTH) == 0;
}

constexpr char kDamaged[] = ".damaged-";
constexpr std::size_t kDateSize = 16; // 20261122T031500Z

// Converts 20261122T031500Z to 2026-11-22T03:15:00Z.
std::string TimeOfDate(const std::string& inDate)
{
    return inDate.substr(0, 4) + "-" + inDate.substr(4, 2) + "-" + inDate.substr(6, 5) + ":" + inDate.substr(11, 2)
           + ":" + inDate.substr(13, 3);
}

bool Exists(const std::string& inPath)
{
    struct statx status;
    return StatusOf(inPath, status);
}

// Returns the current time as 20261122T031500Z.
std::string Now()
{
    struct timespec now = {};
    System().mClockGetTime(CLOCK_REALTIME, &now);
    struct tm parts = {};
    ::gmtime_r(&now.tv_sec, &parts);
    char text[32] = {};
    std::strftime(text, sizeof(text), "%Y%m%dT%H%M%SZ", &parts);
    return text;
}

} // namespace

SystemError MakeFolder(const StoreLocation& inLocation)
{
    for (std::size_t slash = inLocation.mFolder.find('/', 1);; slash = inLocation.mFolder.find('/', slash + 1)) {
        const std::string folder = inLocation.mFolder.substr(0, slash);
        if (System().mMakeDir(folder.c_str(), inLocation.mIsWorldReadable ? 0755 : 0700) != 0 && errno != EEXIST) {
            const int error = errno;
            if (!Exists(folder)) { // an existing folder is not an error, whatever mkdir returned
                return StoreError(error);
            }
        }
        if (slash == std::string::npos) {
            return kNoError;
        }
    }
}

bool MayCreate(const StoreLocation& inLocation)
{
    std::string folder = inLocation.mFolder;
    while (!folder.empty()) {
        if (System().mFAccessAt(AT_FDCWD, folder.c_str(), W_OK, AT_EACCESS) == 0) {
            return true;
        }
        if (errno != ENOENT) {
            return false;
        }
        folder.resize(folder.rfind('/'));
    }
    return false;
}

SystemError CheckLocation(const StoreLocation& inLocation, std::string& outDatabase)
{
    char folder[PATH_MAX];
    if (System().mRealPath(inLocation.mFolder.c_str(), folder) == nullptr) {
        return errno == ENOENT ? kErrorFileNotFound : StoreError(errno);
    }
    outDatabase = folder + inLocation.mDatabase.substr(inLocation.mFolder.size());
    struct statx status;
    if (!StatusOf(folder, status)) {
        return StoreError(errno);
    }
    if (!S_ISDIR(status.stx_mode) || !IsTrusted(status)) {
        return kErrorAccessDenied;
    }
    if (!StatusOf(outDatabase, status)) {
        return errno == ENOENT ? kErrorFileNotFound : StoreError(errno);
    }
    return S_ISREG(status.stx_mode) && IsTrusted(status) ? kNoError : kErrorAccessDenied;
}

bool HasSharedMemory(const std::string& inFolder) noexcept
{
    // Files on a network file system can be mapped, but the mappings of different machines are not coherent.
    constexpr unsigned long kNetworks[] = {
        0x6969,     // NFS
        0x517B,     // SMB
        0xFF534D42, // CIFS
        0xFE534D42, // SMB 2
        0x01021997, // 9P
        0x00C36400, // Ceph
        0x73757245, // Coda
        0x5346414F, // AFS
        0x6B414653, // the kernel's AFS client
        0x65735546, // FUSE, which may be any file system, for example sshfs
    };
    struct statfs status;
    if (System().mStatFs(inFolder.c_str(), &status) != 0) {
        return true;
    }
    for (const unsigned long network : kNetworks) {
        if (static_cast<unsigned long>(status.f_type) == network) {
            return false;
        }
    }
    return true;
}

bool IdentityOf(const std::string& inFile, std::uint64_t& outDevice, std::uint64_t& outInode) noexcept
{
    struct statx status;
    if (!StatusOf(inFile, status)) {
        return false;
    }
    outDevice = std::uint64_t{status.stx_dev_major} << 32 | status.stx_dev_minor;
    outInode = status.stx_ino;
    return true;
}

SystemError MoveAside(const std::string& inDatabase, std::string& outFile, std::string& outTime)
{
    const std::string date = Now();
    outTime = TimeOfDate(date);
    const std::string base = inDatabase + kDamaged + date;
    outFile = base;
    for (int number = 2; Exists(outFile); ++number) {
        outFile = base + "-" + std::to_string(number);
    }
    // Rename the journal first: next to a new database, SQLite would use it as the new one's journal.
    for (const char* const ending : {"-wal", "-shm", "-journal", ""}) {
        const std::string from = inDatabase + ending;
        const std::string to = outFile + ending;
        if (System().mRenameTo(from.c_str(), to.c_str(), 1 /* RENAME_NOREPLACE */) != 0 && errno != ENOENT) {
            return StoreError(errno);
        }
    }
    return kNoError;
}

std::uint64_t MonotonicMilliseconds(int inClock) noexcept
{
    struct timespec time = {};
    const bool isRead = System().mClockGetTime(inClock, &time) == 0;
    return isRead ? static_cast<std::uint64_t>(time.tv_sec) * 1000 + static_cast<std::uint64_t>(time.tv_nsec) / 1000000
                  : 0;
}

std::uint64_t SizeOnDisk(const std::string& inDatabase) noexcept
{
    std::uint64_t size = 0;
    for (const char* const ending : {"", "-wal", "-journal"}) {
        struct statx status;
        const std::string file = inDatabase + ending;
        if (System().mStatx(AT_FDCWD, file.c_str(), AT_SYMLINK_NOFOLLOW, STATX_SIZE, &status) == 0) {
            size += status.stx_size;
        }
    }
    return size;
}

std::vector<Platform::SetAside> FindSetAside(const std::string& inDatabase)
{
    const std::size_t slash = inDatabase.rfind('/');
    const std::string folder = inDatabase.substr(0, slash + 1);
    const std::string prefix = inDatabase.substr(slash + 1) + kDamaged;
    std::vector<Platform::SetAside> list;
    ORL::Linux::OpenFolder entries(folder.c_str());
    while (const dirent64* const entry = entries.IsOpen() ? entries.Entries().Next() : nullptr) {
        const std::string name = entry->d_name;
        const std::string date = name.substr(0, prefix.size()) == prefix ? name.substr(prefix.size()) : "";
        if (date.size() >= kDateSize && date.back() != 'l' && date.back() != 'm') { // skip -wal, -shm, -journal
            list.push_back({folder + name, TimeOfDate(date), std::string()});
        }
    }
    std::sort(list.begin(), list.end(), [](const Platform::SetAside& inLeft, const Platform::SetAside& inRight) {
        return inLeft.mFile < inRight.mFile;
    });
    return list;
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
