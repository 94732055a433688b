// Fails each system call of each operation of File with several errors. The result must report the error, no descriptor
// may stay open, no holder may stay registered, and no contents may be lost.
#include "FileOperationsLinux.h"

#include <Linux/Calls/LinuxErrors.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr int kErrors[] = {EIO,   EACCES, ENOSPC, EMFILE, EINVAL, EINTR, ENOSYS,
                           EPERM, ENOLCK, EDQUOT, EROFS,  ENOMEM, ENOENT};

// Ignored in every operation: failures of calls that are retried or replaced, or whose effect is optional.
const std::vector<IgnoredFailure> kAlwaysIgnored = {
    {Faults::kClose, 0, {EINTR}},
    {Faults::kPRead, 0, {EINTR}},
    {Faults::kPWrite, 0, {EINTR}},
    {Faults::kCopyRange, 0, {EINVAL, EINTR, ENOSYS, EPERM}},
    {Faults::kFUTimens, 0, {ENOSYS, EPERM}},
    {Faults::kFChMod, 0, {ENOSYS, EPERM}},
    {Faults::kRenameTo, 0, {EINVAL, ENOSYS}},
    {Faults::kLink, 0, {ENOSYS, EPERM}},
    {Faults::kFListXAttr},
    {Faults::kSetFlags},
    {Faults::kSeek},
};

bool FitsAny(const std::vector<IgnoredFailure>& inAll, int inCall, unsigned inNumber, int inError)
{
    return std::any_of(inAll.begin(), inAll.end(),
                       [&](const IgnoredFailure& one) { return one.Fits(inCall, inNumber, inError); });
}

std::size_t OpenDescriptors()
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

int RefuseToRename(const char*, const char*, unsigned)
{
    errno = EXDEV;
    return -1;
}

void Prepare(const FileOperation& inOperation, Faults& ioCalls)
{
    ioCalls.Underlying().mFSync = [](int) { return 0; }; // skips the slow sync, which no check needs
    if (inOperation.mIsOnTwoVolumes) {
        ioCalls.Underlying().mRenameTo = &RefuseToRename;
    }
}

// Returns whether the call is one of the allocator's, which may occur at any time; other tests fail these calls.
bool IsOfMemory(int inCall)
{
    return inCall == Faults::kMapPages || inCall == Faults::kAdvisePages || inCall == Faults::kUnmapPages;
}

void ExpectFree(const TempFolder& inFolder)
{
    for (const auto& entry : std::filesystem::directory_iterator(inFolder.Host())) {
        const std::string name = entry.path().filename().string();
        const UTF16String path = inFolder.Path(std::u16string(name.begin(), name.end()));
        EXPECT_EQ(kSuccess, Opened(path, kReadWrite, kShareNone).mResult) << name << " is still held";
    }
}

std::vector<FileOperation> AllOperations()
{
    std::vector<FileOperation> all = AccessOperations();
    const std::vector<FileOperation> transfers = TransferOperations();
    all.insert(all.end(), transfers.begin(), transfers.end());
    return all;
}

class FileFaults : public testing::TestWithParam<FileOperation>
{
protected:
    // Runs the operation without a fault and counts its system calls.
    void CountCalls(unsigned (&outCounts)[Faults::kCallCount]) const
    {
        const TempFolder folder;
        mOperation.mPrepare(folder);
        Faults calls;
        Prepare(mOperation, calls);
        EXPECT_EQ(kSuccess, mOperation.mRun(folder));
        for (int call = 0; call < Faults::kCallCount; ++call) {
            outCounts[call] = IsOfMemory(call) ? 0 : calls.Count(static_cast<Faults::Call>(call));
        }
    }

    void FailCall(int inCall, unsigned inNumber, int inError) const
    {
        SCOPED_TRACE("call " + std::to_string(inCall) + " number " + std::to_string(inNumber) + " error "
                     + std::to_string(inError));
        const TempFolder folder;
        mOperation.mPrepare(folder);
        const std::size_t descriptors = OpenDescriptors();
        Result result = kSuccess;
        {
            Faults calls;
            Prepare(mOperation, calls);
            calls.Fail(static_cast<Faults::Call>(inCall), inNumber, inError);
            result = mOperation.mRun(folder);
        }
        if (!FitsAny(mOperation.mUnspecified, inCall, inNumber, inError) || result != kSuccess) {
            EXPECT_EQ(Ignores(inCall, inNumber, inError) ? kSuccess : ExpectedResult(inCall, inError), result);
        }
        EXPECT_EQ(descriptors, OpenDescriptors());
        mOperation.mCheck(folder, result);
        ExpectFree(folder);
    }

private:
    bool Ignores(int inCall, unsigned inNumber, int inError) const
    {
        if (inCall == Faults::kLockRange) {
            return inError != EACCES || mOperation.mLocks.count(inNumber) == 0;
        }
        return FitsAny(kAlwaysIgnored, inCall, inNumber, inError)
               || FitsAny(mOperation.mIgnored, inCall, inNumber, inError);
    }

    Result ExpectedResult(int inCall, int inError) const
    {
        const bool isLock = inCall == Faults::kLockRange;
        return mOperation.mMapError(static_cast<Faults::Call>(inCall), isLock ? SystemErrors::kErrorSharingViolation
                                                                              : Linux::SystemErrorFromErrno(inError));
    }

    const FileOperation& mOperation = GetParam();
};

} // namespace

TEST_P(FileFaults, EachCallThatFails_IsToldAndLeavesNothing)
{
    unsigned counts[Faults::kCallCount] = {};
    CountCalls(counts);
    int injections = 0;
    for (int call = 0; call < Faults::kCallCount; ++call) {
        for (unsigned number = 1; number <= counts[call]; ++number) {
            for (const int error : kErrors) {
                FailCall(call, number, error);
                ++injections;
            }
        }
    }
    std::printf("%d injections\n", injections);
    EXPECT_LT(0, injections);
}

INSTANTIATE_TEST_SUITE_P(Operations, FileFaults, testing::ValuesIn(AllOperations()),
                         [](const testing::TestParamInfo<FileOperation>& inInfo) {
                             return std::string(inInfo.param.mName);
                         });
