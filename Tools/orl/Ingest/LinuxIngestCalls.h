// The system calls that an ingest makes by itself, beside those of the library. The program's go to the system; a test
// exchanges them while no ingest is under way.
#pragma once

#include <ctime>
#include <dirent.h>

namespace orl {

struct IngestCalls
{
    int (*mOpen)(const char* inPath, int inFlags); // -1 and errno, as all here
    dirent* (*mReadDir)(DIR* inFolder);            // null at the end, and null and errno
    int (*mFUTimens)(int inFile, const struct timespec* inTimes);
    int (*mFDataSync)(int inFile);
    int (*mFSync)(int inFile);
    int (*mSyncFs)(int inFile);
};

extern IngestCalls sIngestCalls;

} // namespace orl
