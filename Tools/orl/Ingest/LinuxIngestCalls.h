// The system calls that an ingest makes itself, not through the library. Tests replace them while no ingest runs.
#pragma once

#include <ctime>
#include <dirent.h>
#include <sys/stat.h>

namespace orl {

struct IngestCalls
{
    int (*mOpenAt)(int inFolder, const char* inName, int inFlags); // on an error, all return -1 and set errno
    dirent* (*mReadDir)(DIR* inFolder);                            // null at the end; null with errno set on an error
    int (*mFStatAt)(int inFolder, const char* inName, struct stat* outStatus, int inFlags);
    int (*mMakeDirAt)(int inFolder, const char* inName);
    int (*mRenameAt)(int inFolder, const char* inFrom, const char* inTo, unsigned inFlags);
    int (*mLinkAt)(int inFolder, const char* inFrom, const char* inTo);
    int (*mUnlinkAt)(int inFolder, const char* inName, int inFlags);
    int (*mFUTimens)(int inFile, const struct timespec* inTimes);
    int (*mFDataSync)(int inFile);
    int (*mFSync)(int inFile);
    int (*mSyncFs)(int inFile);
    int (*mFChMod)(int inFile, unsigned inMode);
    int (*mFAccessAt)(int inFolder, const char* inName, int inAccess);
};

extern IngestCalls sIngestCalls;

} // namespace orl
