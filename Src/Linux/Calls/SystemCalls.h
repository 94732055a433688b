// The table of all system calls that these sources make. The default table forwards to the kernel; a test installs one
// that fails, shortens or delays a call. The indirection adds a nanosecond to each call.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/types.h>
#include <time.h>

struct io_uring;
struct io_uring_params;
struct io_uring_cqe;

// X(name, failure, result, parameters, arguments, size)
//   failure  Errno: -1 and errno.  Null: a null pointer and errno.  Number: the error number itself.
//            Negative: the error number, negated.  Nothing: never fails.
//   size     the byte count that a short transfer reduces, or sNoSize.
// Add a call when a source first needs it. The table, its forwarding functions and the tests' fault-injecting table are
// generated from this list.
#define ORL_LINUX_SYSTEM_CALLS(X)                                                                                      \
  X(Open, Errno, int, (const char* inPath, int inFlags, mode_t inMode), (inPath, inFlags, inMode), sNoSize)            \
  X(Close, Errno, int, (int inFile), (inFile), sNoSize)                                                                \
  X(PRead, Errno, ssize_t, (int inFile, void* outBuffer, std::size_t inSize, off_t inPosition),                        \
    (inFile, outBuffer, inSize, inPosition), inSize)                                                                   \
  X(PWrite, Errno, ssize_t, (int inFile, const void* inBuffer, std::size_t inSize, off_t inPosition),                  \
    (inFile, inBuffer, inSize, inPosition), inSize)                                                                    \
  X(CopyRange, Errno, ssize_t, (int inFrom, off_t* ioFromPosition, int inTo, off_t* ioToPosition, std::size_t inSize), \
    (inFrom, ioFromPosition, inTo, ioToPosition, inSize), inSize)                                                      \
  X(FTruncate, Errno, int, (int inFile, off_t inSize), (inFile, inSize), sNoSize)                                      \
  X(FSync, Errno, int, (int inFile), (inFile), sNoSize)                                                                \
  X(SyncVolume, Errno, int, (int inFile), (inFile), sNoSize)                                                           \
  X(FChMod, Errno, int, (int inFile, mode_t inMode), (inFile, inMode), sNoSize)                                        \
  X(ChMod, Errno, int, (const char* inPath, mode_t inMode), (inPath, inMode), sNoSize)                                 \
  X(FUTimens, Errno, int, (int inFile, const struct timespec* inTimes), (inFile, inTimes), sNoSize)                    \
  X(FListXAttr, Errno, ssize_t, (int inFile, char* outNames, std::size_t inSize), (inFile, outNames, inSize), sNoSize) \
  X(FGetXAttr, Errno, ssize_t, (int inFile, const char* inName, void* outValue, std::size_t inSize),                   \
    (inFile, inName, outValue, inSize), sNoSize)                                                                       \
  X(FSetXAttr, Errno, int, (int inFile, const char* inName, const void* inValue, std::size_t inSize, int inFlags),     \
    (inFile, inName, inValue, inSize, inFlags), sNoSize)                                                               \
  X(FRemoveXAttr, Errno, int, (int inFile, const char* inName), (inFile, inName), sNoSize)                             \
  X(LockRange, Errno, int, (int inFile, int inCommand, struct flock* ioLock), (inFile, inCommand, ioLock), sNoSize)    \
  X(GetDents, Errno, ssize_t, (int inFolder, void* outBuffer, std::size_t inSize), (inFolder, outBuffer, inSize),      \
    sNoSize)                                                                                                           \
  X(Statx, Errno, int, (int inFolder, const char* inPath, int inFlags, unsigned inMask, struct statx* outStatus),      \
    (inFolder, inPath, inFlags, inMask, outStatus), sNoSize)                                                           \
  X(FAccessAt, Errno, int, (int inFolder, const char* inPath, int inMode, int inFlags),                                \
    (inFolder, inPath, inMode, inFlags), sNoSize)                                                                      \
  X(FStat, Errno, int, (int inFile, struct stat* outStatus), (inFile, outStatus), sNoSize)                             \
  X(Seek, Errno, off_t, (int inFile, off_t inPosition, int inFrom), (inFile, inPosition, inFrom), sNoSize)             \
  X(SetFlags, Errno, int, (int inFile, int inFlags), (inFile, inFlags), sNoSize)                                       \
  X(StatVfs, Errno, int, (const char* inPath, struct statvfs* outStatus), (inPath, outStatus), sNoSize)                \
  X(StatFs, Errno, int, (const char* inPath, struct statfs* outStatus), (inPath, outStatus), sNoSize)                  \
  X(MakeDir, Errno, int, (const char* inPath, mode_t inMode), (inPath, inMode), sNoSize)                               \
  X(RemoveDir, Errno, int, (const char* inPath), (inPath), sNoSize)                                                    \
  X(Rename, Errno, int, (const char* inFrom, const char* inTo), (inFrom, inTo), sNoSize)                               \
  X(Unlink, Errno, int, (const char* inPath), (inPath), sNoSize)                                                       \
  X(RenameTo, Errno, int, (const char* inFrom, const char* inTo, unsigned inFlags), (inFrom, inTo, inFlags), sNoSize)  \
  X(Link, Errno, int, (const char* inFrom, const char* inTo), (inFrom, inTo), sNoSize)                                 \
  X(OpenAt, Errno, int, (int inFolder, const char* inPath, int inFlags, mode_t inMode),                                \
    (inFolder, inPath, inFlags, inMode), sNoSize)                                                                      \
  X(UnlinkAt, Errno, int, (int inFolder, const char* inName, int inFlags), (inFolder, inName, inFlags), sNoSize)       \
  X(MakeDirAt, Errno, int, (int inFolder, const char* inName, mode_t inMode), (inFolder, inName, inMode), sNoSize)     \
  X(RenameAt, Errno, int, (int inFrom, const char* inName, int inTo, const char* inNewName, unsigned inFlags),         \
    (inFrom, inName, inTo, inNewName, inFlags), sNoSize)                                                               \
  X(ReadLinkAt, Errno, ssize_t, (int inFolder, const char* inName, char* outTarget, std::size_t inSize),               \
    (inFolder, inName, outTarget, inSize), sNoSize)                                                                    \
  X(SymLinkAt, Errno, int, (const char* inTarget, int inFolder, const char* inName), (inTarget, inFolder, inName),     \
    sNoSize)                                                                                                           \
  X(FAdvise, Number, int, (int inFile, off_t inPosition, off_t inSize, int inAdvice),                                  \
    (inFile, inPosition, inSize, inAdvice), sNoSize)                                                                   \
  X(LoadObject, Null, void*, (const char* inName, int inFlags), (inName, inFlags), sNoSize)                            \
  X(UnloadObject, Errno, int, (void* inObject), (inObject), sNoSize)                                                   \
  X(GetCwd, Null, char*, (char* outBuffer, std::size_t inSize), (outBuffer, inSize), sNoSize)                          \
  X(RealPath, Null, char*, (const char* inPath, char* outResolved), (inPath, outResolved), sNoSize)                    \
  X(MapPages, Null, void*, (std::size_t inSize), (inSize), sNoSize)                                                    \
  X(MapShared, Null, void*, (int inFile, std::size_t inSize, int inProtection), (inFile, inSize, inProtection),        \
    sNoSize)                                                                                                           \
  X(AdvisePages, Errno, int, (void* inPages, std::size_t inSize, int inAdvice), (inPages, inSize, inAdvice), sNoSize)  \
  X(UnmapPages, Errno, int, (void* inPages, std::size_t inSize), (inPages, inSize), sNoSize)                           \
  X(ClockGetTime, Errno, int, (clockid_t inClock, struct timespec * outTime), (inClock, outTime), sNoSize)             \
  X(GetResourceLimit, Errno, int, (int inResource, struct rlimit* outLimit), (inResource, outLimit), sNoSize)          \
  X(GetTscMode, Errno, int, (int* outMode), (outMode), sNoSize)                                                        \
  X(CreateThread, Number, int,                                                                                         \
    (pthread_t * outThread, const pthread_attr_t* inAttributes, void* (*inBody)(void*), void* inArgument),             \
    (outThread, inAttributes, inBody, inArgument), sNoSize)                                                            \
  X(UringQueueInit, Negative, int, (unsigned inEntries, io_uring* outRing, io_uring_params* ioParameters),             \
    (inEntries, outRing, ioParameters), sNoSize)                                                                       \
  X(UringSubmit, Negative, int, (io_uring * ioRing), (ioRing), sNoSize)                                                \
  X(UringArm, Negative, int, (io_uring * ioRing), (ioRing), sNoSize)                                                   \
  X(MakeEvent, Errno, int, (unsigned inCount, int inFlags), (inCount, inFlags), sNoSize)                               \
  X(RaiseEvent, Errno, int, (int inEvent), (inEvent), sNoSize)                                                         \
  X(UringWaitCqe, Negative, int, (io_uring * ioRing, io_uring_cqe * *outCompletion), (ioRing, outCompletion), sNoSize) \
  X(UringQueueExit, Nothing, void, (io_uring * ioRing), (ioRing), sNoSize)

namespace ORL {
namespace Linux {

struct SystemCalls
{
#define ORL_DECLARE_CALL(name, failure, result, parameters, arguments, size) result(*m##name) parameters;
    ORL_LINUX_SYSTEM_CALLS(ORL_DECLARE_CALL)
#undef ORL_DECLARE_CALL
};

/// The table that forwards to the kernel.
extern const SystemCalls kSystem;

/// The table in use. Constant-initialised, so that static initialisers may make calls before main.
extern std::atomic<const SystemCalls*> sSystemCalls;

inline const SystemCalls& System() noexcept
{
    return *sSystemCalls.load(std::memory_order_acquire);
}

/// Installs a table and returns the previous one. Null installs kSystem. The table must outlive its use: a call in
/// progress still uses the previous table.
const SystemCalls* InstallSystemCalls(const SystemCalls* inCalls) noexcept;

} // namespace Linux
} // namespace ORL
