#include "SystemCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <liburing.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace ORL {
namespace Linux {

namespace {

int Open(const char* inPath, int inFlags, mode_t inMode)
{
    return ::open(inPath, inFlags, inMode);
}

int OpenAt(int inFolder, const char* inPath, int inFlags, mode_t inMode)
{
    return ::openat(inFolder, inPath, inFlags, inMode);
}

ssize_t CopyRange(int inFrom, off_t* ioFromPosition, int inTo, off_t* ioToPosition, std::size_t inSize)
{
    return ::copy_file_range(inFrom, ioFromPosition, inTo, ioToPosition, inSize, 0);
}

int RaiseEvent(int inEvent)
{
    return ::eventfd_write(inEvent, 1);
}

int SetFlags(int inFile, int inFlags)
{
    return ::fcntl(inFile, F_SETFL, inFlags);
}

int LockRange(int inFile, int inCommand, struct flock* ioLock)
{
    return ::fcntl(inFile, inCommand, ioLock);
}

int RenameTo(const char* inFrom, const char* inTo, unsigned inFlags)
{
    return ::renameat2(AT_FDCWD, inFrom, AT_FDCWD, inTo, inFlags);
}

int GetResourceLimit(int inResource, struct rlimit* outLimit)
{
    return ::getrlimit(static_cast<__rlimit_resource>(inResource), outLimit);
}

int GetTscMode(int* outMode)
{
    return ::prctl(PR_GET_TSC, outMode);
}

// io_uring_wait_cqe is an inline function in liburing's header, so the table points to this wrapper.
int WaitCqe(io_uring* ioRing, io_uring_cqe** outCompletion)
{
    return ::io_uring_wait_cqe(ioRing, outCompletion);
}

// Maps private memory; returns null instead of MAP_FAILED.
void* MapPages(std::size_t inSize)
{
    void* const pages = ::mmap(nullptr, inSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages != MAP_FAILED ? pages : nullptr;
}

// Maps the beginning of a file, shared with all other mappings of it.
void* MapShared(int inFile, std::size_t inSize, int inProtection)
{
    void* const pages = ::mmap(nullptr, inSize, inProtection, MAP_SHARED, inFile, 0);
    return pages != MAP_FAILED ? pages : nullptr;
}

constexpr SystemCalls MakeKernelTable()
{
    SystemCalls calls{};
    calls.mOpen = &Open;
    calls.mClose = &::close;
    calls.mPRead = &::pread;
    calls.mPWrite = &::pwrite;
    calls.mCopyRange = &CopyRange;
    calls.mFTruncate = &::ftruncate;
    calls.mFSync = &::fsync;
    calls.mSyncVolume = &::syncfs;
    calls.mFChMod = &::fchmod;
    calls.mChMod = &::chmod;
    calls.mFUTimens = &::futimens;
    calls.mFListXAttr = &::flistxattr;
    calls.mFGetXAttr = &::fgetxattr;
    calls.mFSetXAttr = &::fsetxattr;
    calls.mFRemoveXAttr = &::fremovexattr;
    calls.mLockRange = &LockRange;
    calls.mGetDents = &::getdents64;
    calls.mStatx = &::statx;
    calls.mFAccessAt = &::faccessat;
    calls.mFStat = &::fstat;
    calls.mSeek = &::lseek;
    calls.mSetFlags = &SetFlags;
    calls.mStatVfs = &::statvfs;
    calls.mStatFs = &::statfs;
    calls.mMakeDir = &::mkdir;
    calls.mRemoveDir = &::rmdir;
    calls.mRename = &::rename;
    calls.mUnlink = &::unlink;
    calls.mRenameTo = &RenameTo;
    calls.mLink = &::link;
    calls.mOpenAt = &OpenAt;
    calls.mUnlinkAt = &::unlinkat;
    calls.mMakeDirAt = &::mkdirat;
    calls.mRenameAt = &::renameat2;
    calls.mReadLinkAt = &::readlinkat;
    calls.mSymLinkAt = &::symlinkat;
    calls.mFAdvise = &::posix_fadvise;
    calls.mLoadObject = &::dlopen;
    calls.mUnloadObject = &::dlclose;
    calls.mGetCwd = &::getcwd;
    calls.mRealPath = &::realpath;
    calls.mMapPages = &MapPages;
    calls.mMapShared = &MapShared;
    calls.mAdvisePages = &::madvise;
    calls.mUnmapPages = &::munmap;
    calls.mClockGetTime = &::clock_gettime;
    calls.mGetResourceLimit = &GetResourceLimit;
    calls.mGetTscMode = &GetTscMode;
    calls.mCreateThread = &::pthread_create;
    calls.mUringQueueInit = &::io_uring_queue_init_params;
    calls.mUringSubmit = &::io_uring_submit;
    calls.mUringArm = &::io_uring_submit;
    calls.mMakeEvent = &::eventfd;
    calls.mRaiseEvent = &RaiseEvent;
    calls.mUringWaitCqe = &WaitCqe;
    calls.mUringQueueExit = &::io_uring_queue_exit;
    return calls;
}

} // namespace

const SystemCalls kSystem = MakeKernelTable();

std::atomic<const SystemCalls*> sSystemCalls{&kSystem};

const SystemCalls* InstallSystemCalls(const SystemCalls* inCalls) noexcept
{
    return sSystemCalls.exchange(inCalls != nullptr ? inCalls : &kSystem, std::memory_order_acq_rel);
}

} // namespace Linux
} // namespace ORL
