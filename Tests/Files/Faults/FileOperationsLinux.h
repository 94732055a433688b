// The File operations whose system calls the tests fail one by one, and the failures that each must report.
#pragma once

#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>
#include <Files/FileImpl.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace ORLTest {

using Faults = FaultySystemCalls;

/// Failures of a call that the operation need not report. mNumber 0 means every call of the kind, empty mErrors means
/// every error.
struct IgnoredFailure
{
    Faults::Call mCall;
    unsigned mNumber = 0;
    std::set<int> mErrors = {};

    bool Fits(int inCall, unsigned inNumber, int inError) const
    {
        return inCall == mCall && (mNumber == 0 || mNumber == inNumber)
               && (mErrors.empty() || mErrors.count(inError) != 0);
    }
};

/// Maps the system's error to the result that File returns for it.
inline ORL::Result MapDirectly(Faults::Call, ORL::SystemError inError)
{
    return ORL::Files::ResultOf(inError);
}

/// One operation on the files of a folder.
struct FileOperation
{
    const char* mName;
    void (*mPrepare)(const TempFolder&);
    ORL::Result (*mRun)(const TempFolder&);
    /// Checks the files on disk after the operation has returned the result.
    void (*mCheck)(const TempFolder&, ORL::Result);
    /// Ordinals of the lock calls whose EACCES is reported as a sharing violation. Other lock failures are ignored.
    std::set<unsigned> mLocks;
    std::vector<IgnoredFailure> mIgnored;
    /// Maps the system's error to the expected result.
    ORL::Result (*mMapError)(Faults::Call, ORL::SystemError) = &MapDirectly;
    /// Failures whose outcome depends on the file system of the tests.
    std::vector<IgnoredFailure> mUnspecified = {};
    bool mIsOnTwoVolumes = false;
};

/// Returns the operations that open, read, write or delete files.
std::vector<FileOperation> AccessOperations();

/// Returns the operations that copy, move or swap files.
std::vector<FileOperation> TransferOperations();

inline const IgnoredFailure kInterruptedOpen = {Faults::kOpen, 0, {EINTR}};
inline const IgnoredFailure kEveryClose = {Faults::kClose};
inline const IgnoredFailure kEveryStatx = {Faults::kStatx};

/// Returns the contents of the old file for 'o', of the new one for 'n'.
inline const std::string& Big(char inFill)
{
    static const std::string sOld(300000, 'o');
    static const std::string sNew(400000, 'n');
    return inFill == 'o' ? sOld : sNew;
}

inline void MakeOld(const TempFolder& inFolder)
{
    inFolder.MakeFile("f", Big('o'));
}

inline void ExpectUntouched(const TempFolder& inFolder, ORL::Result)
{
    EXPECT_TRUE(Big('o') == ContentsOf(inFolder, "f"));
}

} // namespace ORLTest
