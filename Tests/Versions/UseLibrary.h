// Starts, uses and stops the version of the library that the calling module is linked to, and reports the results. Host
// and plug-in compile the same source, so each difference between two reports comes from the libraries.
#pragma once

#include <cstddef>

namespace Versions {

/// The results of one Use. Plain data, since the two users have different libraries.
struct Report
{
    char mFailure[128];       // empty on success
    char mLibrary[1024];      // the path of the library that was used
    char mApplication[64];    // the name that this user gave itself
    char mSetting[64];        // the value that this user wrote and read back
    const char* mRecord;      // the record of a string that every user interns
    unsigned long mSafeColor; // the result that differs between the versions
    unsigned int mLanguage;   // the language that this user chose
    unsigned int mBytesRead;  // by an asynchronous read of the whole file
    unsigned int mRequests;   // run by a work queue
    unsigned int mCaught;     // exceptions of the library that this user caught
};

/// Starts the library for a user with a name and a language.
void Start(const char* inName, unsigned short inLanguage);

/// Uses the started library: a work queue, asynchronous reads of a file (a host path), strings and settings.
void Use(const char* inFile, const char* inName, Report& outReport);

/// Stops the library.
void Stop();

} // namespace Versions
