#include "LinuxRegistryBoard.h"

#include "../../Calls/LinuxErrors.h"
#include "../../Calls/SystemCalls.h"
#include "LinuxRegistryFolder.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <sys/sysmacros.h>

namespace ORL {
namespace Registry {
namespace Linux {

using ORL::Linux::OpenByPath;
using ORL::Linux::System;
using ORL::Linux::SystemErrorFromErrno;
using namespace SystemErrors;

// Processes with other builds of the library share this layout. The version of the layout is part of mMagic.
struct ChangeBoard::Page
{
    struct Slot
    {
        std::atomic<std::uint64_t> mKind;
        std::atomic<std::uint64_t> mKey;
        std::atomic<std::uint64_t> mHash;
    };

    std::atomic<std::uint64_t> mMagic;
    std::atomic<std::uint64_t> mMadeAt; // the system's monotonic clock, in milliseconds
    alignas(64) std::atomic<std::uint64_t> mGeneration;
    alignas(64) Slot mSlots[kSlots];
};

namespace {

constexpr std::uint64_t kMagic = 0x31304452424C524F; // "ORLBRD01"
constexpr std::size_t kFileSize = 8192;
constexpr int kLockAttempts = 4000;
constexpr long kLockPauseMilliseconds = 5; // 20 s in total

void Sleep(long inMilliseconds)
{
    const struct timespec pause = {0, inMilliseconds * 1000 * 1000};
    ::nanosleep(&pause, nullptr);
}

SystemError LockFile(int inFile)
{
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_len = 1;
    for (int attempt = 0; attempt < kLockAttempts; ++attempt) {
        if (System().mLockRange(inFile, F_OFD_SETLK, &range) == 0) {
            return kNoError;
        }
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            return SystemErrorFromErrno(errno);
        }
        Sleep(kLockPauseMilliseconds);
    }
    return kErrorBusy;
}

SystemError GetFileStatus(int inFile, struct stat& outStatus)
{
    if (System().mFStat(inFile, &outStatus) != 0) {
        return SystemErrorFromErrno(errno);
    }
    return S_ISREG(outStatus.st_mode) ? kNoError : kErrorAccessDenied;
}

} // namespace

SystemError ChangeBoard::Open(const std::string& inFile, bool inIsWorldReadable)
{
    static_assert(sizeof(Page) <= kFileSize && std::atomic<std::uint64_t>::is_always_lock_free);
    Close();
    constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK;
    mFile = OpenByPath(inFile.c_str(), O_RDWR | O_CREAT | kFlags, inIsWorldReadable ? 0644 : 0600);
    mIsWritable = static_cast<bool>(mFile);
    if (!mFile && (errno == EACCES || errno == EROFS || errno == EPERM)) {
        mFile = OpenByPath(inFile.c_str(), O_RDONLY | kFlags);
    }
    if (!mFile) {
        return errno == ELOOP ? kErrorAccessDenied : SystemErrorFromErrno(errno);
    }
    struct stat status = {};
    SystemError error = GetFileStatus(mFile.Get(), status);
    mName = inFile;
    mDevice = std::uint64_t{major(status.st_dev)} << 32 | minor(status.st_dev); // the encoding of IdentityOf
    mInode = status.st_ino;
    if (error == kNoError && status.st_size < static_cast<off_t>(kFileSize)) {
        // Calls fchmod, because the umask could deny other users access to the machine's store.
        const bool isMade = mIsWritable && System().mFTruncate(mFile.Get(), kFileSize) == 0
                            && (!inIsWorldReadable || System().mFChMod(mFile.Get(), 0644) == 0);
        error = isMade ? kNoError : mIsWritable ? SystemErrorFromErrno(errno) : kErrorFileNotFound;
    }
    if (error == kNoError) {
        void* const page =
            System().mMapShared(mFile.Get(), kFileSize, mIsWritable ? PROT_READ | PROT_WRITE : PROT_READ);
        mPage = static_cast<Page*>(page);
        error = page != nullptr ? kNoError : errno == ENODEV ? kErrorNotSupported : SystemErrorFromErrno(errno);
    }
    if (error == kNoError) {
        std::uint64_t magic = 0;
        if (mIsWritable) {
            mPage->mMagic.compare_exchange_strong(magic, kMagic);
        } else {
            magic = mPage->mMagic.load();
        }
        error = magic == kMagic || (magic == 0 && mIsWritable) ? kNoError : kErrorNotRegistryFile;
    }
    if (error != kNoError) {
        Close();
    } else if (mIsWritable) {
        WaitForGracePeriod();
    }
    return error;
}

// If another program deleted the previous board, processes that mapped it need some time to find this one.
void ChangeBoard::WaitForGracePeriod() noexcept
{
    std::uint64_t madeAt = 0;
    const std::uint64_t start = MonotonicMilliseconds(CLOCK_MONOTONIC);
    if (mPage->mMadeAt.compare_exchange_strong(madeAt, start != 0 ? start : 1)) {
        madeAt = start;
    }
    for (std::uint64_t now = start; now >= madeAt && now - madeAt < kGracePeriodMilliseconds;) {
        Sleep(static_cast<long>(kGracePeriodMilliseconds - (now - madeAt)));
        now = MonotonicMilliseconds(CLOCK_MONOTONIC);
    }
}

bool ChangeBoard::IsFileCurrent() const noexcept
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    return IdentityOf(mName, device, inode) && device == mDevice && inode == mInode;
}

void ChangeBoard::Close() noexcept
{
    if (mPage != nullptr) {
        System().mUnmapPages(mPage, kFileSize);
        mPage = nullptr;
    }
    mFile.Close();
    mIsWritable = false;
}

SystemError ChangeBoard::Lock() noexcept
{
    return mIsWritable ? LockFile(mFile.Get()) : kNoError;
}

void ChangeBoard::Unlock() noexcept
{
    if (mIsWritable) {
        struct flock range = {};
        range.l_type = F_UNLCK;
        range.l_len = 1;
        System().mLockRange(mFile.Get(), F_OFD_SETLK, &range);
    }
}

std::uint64_t ChangeBoard::Generation() const noexcept
{
    return mPage->mGeneration.load(std::memory_order_acquire);
}

bool ChangeBoard::ChangesSince(std::uint64_t inSince, std::uint64_t& outFinished, std::vector<Change>& outChanges) const
{
    const std::uint64_t now = Generation();
    outFinished = now & ~std::uint64_t{1};
    const std::uint64_t first = inSince / 2 + 1;
    const std::uint64_t last = (now + 1) / 2;
    if (last < inSince / 2 || last - first + 1 >= kSlots) {
        return false;
    }
    outChanges.clear();
    for (std::uint64_t number = first; number <= last; ++number) {
        const Page::Slot& slot = mPage->mSlots[number % kSlots];
        Change change;
        change.mKind = static_cast<Change::Kind>(slot.mKind.load(std::memory_order_acquire));
        change.mKey = slot.mKey.load(std::memory_order_acquire);
        change.mHash = slot.mHash.load(std::memory_order_acquire);
        outChanges.push_back(change);
    }
    // A writer may have overwritten a slot during these loads: at most the slot after the last posted change. If a
    // load above has read an overwritten slot, this load reads a generation that shows it.
    const std::uint64_t after = (mPage->mGeneration.load(std::memory_order_relaxed) + 1) / 2;
    return after + 1 - first < kSlots;
}

std::uint64_t ChangeBoard::PostChange(const Change& inChange) noexcept
{
    // If the generation is odd here, its writer has committed but not finished yet, or has died. The entry stays valid.
    const std::uint64_t posted = (mPage->mGeneration.load(std::memory_order_acquire) + 1) | 1;
    Page::Slot& slot = mPage->mSlots[(posted + 1) / 2 % kSlots];
    slot.mKind.store(inChange.mKind, std::memory_order_release);
    slot.mKey.store(inChange.mKey, std::memory_order_release);
    slot.mHash.store(inChange.mHash, std::memory_order_release);
    mPage->mGeneration.store(posted);
    return posted;
}

void ChangeBoard::FinishChange(std::uint64_t inPosted) noexcept
{
    std::uint64_t expected = inPosted;
    mPage->mGeneration.compare_exchange_strong(expected, inPosted + 1);
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
