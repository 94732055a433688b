// Fails each system call of an ingest, at each occurrence, with each error that a disk or a card may cause.
#include "IngestRunSupport.h"

#include <FaultySystemCallsLinux.h>
#include <LinuxIngestCalls.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

/// Intercepts the system calls that the tool makes directly: counts the calls during its lifetime, and can make one
/// fail.
class FaultyIngestCalls
{
public:
    enum Call {
        kOpenAt,
        kReadDir,
        kFStatAt,
        kMakeDirAt,
        kRenameAt,
        kLinkAt,
        kUnlinkAt,
        kFUTimens,
        kFDataSync,
        kFSync,
        kSyncFs,
        kFChMod,
        kCallCount
    };

    FaultyIngestCalls()
    {
        sCall = kCallCount;
        std::fill_n(sCounts, static_cast<int>(kCallCount), 0u);
        orl::sIngestCalls = {
            [](int inFolder, const char* inName, int inFlags) {
                return Fails(kOpenAt) ? -1 : sSystem.mOpenAt(inFolder, inName, inFlags);
            },
            [](DIR* inFolder) { return Fails(kReadDir) ? nullptr : sSystem.mReadDir(inFolder); },
            [](int inFolder, const char* inName, struct stat* outStatus, int inFlags) {
                return Fails(kFStatAt) ? -1 : sSystem.mFStatAt(inFolder, inName, outStatus, inFlags);
            },
            [](int inFolder, const char* inName) {
                return Fails(kMakeDirAt) ? -1 : sSystem.mMakeDirAt(inFolder, inName);
            },
            [](int inFolder, const char* inFrom, const char* inTo, unsigned inFlags) {
                return Fails(kRenameAt) ? -1 : sSystem.mRenameAt(inFolder, inFrom, inTo, inFlags);
            },
            [](int inFolder, const char* inFrom, const char* inTo) {
                return Fails(kLinkAt) ? -1 : sSystem.mLinkAt(inFolder, inFrom, inTo);
            },
            [](int inFolder, const char* inName, int inFlags) {
                return Fails(kUnlinkAt) ? -1 : sSystem.mUnlinkAt(inFolder, inName, inFlags);
            },
            [](int inFile, const struct timespec* inTimes) {
                return Fails(kFUTimens) ? -1 : sSystem.mFUTimens(inFile, inTimes);
            },
            [](int inFile) { return Fails(kFDataSync) ? -1 : sSystem.mFDataSync(inFile); },
            [](int inFile) { return Fails(kFSync) ? -1 : sSystem.mFSync(inFile); },
            [](int inFile) { return Fails(kSyncFs) ? -1 : sSystem.mSyncFs(inFile); },
            [](int inFile, unsigned inMode) { return Fails(kFChMod) ? -1 : sSystem.mFChMod(inFile, inMode); },
            sSystem.mFAccessAt,
        };
    }
    ~FaultyIngestCalls() { orl::sIngestCalls = sSystem; }
    FaultyIngestCalls(const FaultyIngestCalls&) = delete;
    FaultyIngestCalls& operator=(const FaultyIngestCalls&) = delete;

    /// inNumber counts the calls of that kind; 1 is the first.
    void Fail(Call inCall, unsigned inNumber, int inErrno)
    {
        sCall = inCall;
        sNumber = inNumber;
        sErrno = inErrno;
    }

    unsigned Count(Call inCall) const { return sCounts[inCall]; }

private:
    // Needs no lock: only one file is processed at a time, so the threads never call concurrently.
    static bool Fails(Call inCall)
    {
        const bool fails = ++sCounts[inCall] == sNumber && inCall == sCall;
        errno = fails ? sErrno : errno;
        return fails;
    }

    static inline const orl::IngestCalls sSystem = orl::sIngestCalls;
    static inline Call sCall = kCallCount;
    static inline unsigned sNumber = 0;
    static inline int sErrno = 0;
    static inline unsigned sCounts[kCallCount] = {};
};

class IngestFaults : public testing::TestWithParam<int>
{
protected:
    IngestFaults()
    {
        ORL::Foundation::Initialize();
        mFolder.MakeFolder("card/d");
        WriteFile(Card() / "d/a", std::string(5000, 'a'));
        WriteFile(Card() / "b", "B");
        mCard = ReadTree(Card());
    }
    ~IngestFaults() override { ORL::Foundation::Terminate(); }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }

    /// Restores the state that a killed run leaves: an unfinished file, an incomplete manifest line and the record.
    void RestoreInitialState() const
    {
        fs::remove_all(Disk());
        fs::create_directory(Disk());
        WriteFile(Disk() / kUnfinished, "half");
        WriteFile(Disk() / kManifest, "0123456789abcdef torn");
        WriteFile(Disk() / kRecord, RecordOf("M 0\nT " + std::string(kUnfinished) + "\n"));
    }

    /// Expects that files with a final name are complete, and that every manifest line is correct.
    void ExpectOnlyCompleteFiles() const
    {
        const FileTree disk = ReadTree(Disk());
        for (const auto& [name, contents] : disk) {
            EXPECT_TRUE(name == kManifest || IsLeftover(name) || contents == mCard.at(name)) << name;
        }
        for (const auto& [name, digest] : ReadManifest(Disk() / kManifest, true)) {
            ASSERT_EQ(1u, disk.count(name)) << name;
            EXPECT_EQ(digest, ReferenceSha256(disk.at(name))) << name;
        }
    }

    /// Fails each call of a kind once. A run without a report must be complete, and so must every second run.
    template <class Calls>
    void FailEach(typename Calls::Call inCall)
    {
        unsigned undisturbed = 0;
        RestoreInitialState();
        {
            Calls calls;
            EXPECT_TRUE(IngestHere(Card(), Disk()).mTroubles.empty());
            undisturbed = calls.Count(inCall);
        }
        EXPECT_LT(0u, undisturbed) << inCall;
        for (unsigned number = 1; number <= undisturbed && !HasFailure(); ++number) {
            SCOPED_TRACE("call " + std::to_string(inCall) + ", number " + std::to_string(number) + " of "
                         + std::to_string(undisturbed));
            RestoreInitialState();
            bool isDone = false;
            {
                Calls calls;
                calls.Fail(inCall, number, GetParam());
                try {
                    isDone = IngestHere(Card(), Disk()).mTroubles.empty();
                } catch (const orl::Failure&) {
                }
            }
            ExpectOnlyCompleteFiles();
            if (isDone) {
                FileTree disk = ReadTree(Disk());
                fs::remove(Disk() / kUnfinished); // a harmless leftover; the next run deletes it
                const bool isLeft = disk.count(kUnfinished) != 0 || disk.count(kRecord) != 0;
                EXPECT_EQ(isLeft, disk.count(kRecord) != 0) << "what is left is in the record";
                fs::remove(Disk() / kRecord);
                ExpectIngested(mCard, Disk());
                if (isLeft) {
                    WriteFile(Disk() / kRecord, disk[kRecord]);
                }
            }
            EXPECT_TRUE(IngestHere(Card(), Disk()).mTroubles.empty());
            ExpectIngested(mCard, Disk());
        }
    }

    /// Fails a call before the acknowledgement: the user must get one line and the manifest none, and a second run
    /// must complete.
    void ExpectNotAcknowledged(FaultyIngestCalls::Call inCall, unsigned inNumber)
    {
        SCOPED_TRACE("call " + std::to_string(inCall) + ", number " + std::to_string(inNumber));
        fs::remove_all(Disk());
        fs::create_directory(Disk());
        orl::IngestOutcome outcome;
        {
            FaultyIngestCalls calls;
            calls.Fail(inCall, inNumber, GetParam());
            outcome = IngestHere(Card(), Disk());
            ASSERT_LE(inNumber, calls.Count(inCall));
        }
        ASSERT_EQ(1u, outcome.mTroubles.size());
        EXPECT_EQ(orl::kExitFailure, outcome.mTroubles[0].mExitCode);
        EXPECT_NE(std::string::npos, outcome.mTroubles[0].mText.find("cannot flush")) << outcome.mTroubles[0].mText;
        EXPECT_EQ("", fs::exists(Disk() / kManifest) ? ReadFile(Disk() / kManifest) : "");
        ExpectOnlyCompleteFiles();
        EXPECT_TRUE(IngestHere(Card(), Disk()).mTroubles.empty());
        ExpectIngested(mCard, Disk());
    }

    TempFolder mFolder;
    FileTree mCard;
};

std::string NameOfError(const testing::TestParamInfo<int>& inInfo)
{
    return ::strerrorname_np(inInfo.param);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Errors, IngestFaults, testing::Values(EIO, ENOSPC, EDQUOT, EROFS, ENOMEM, EACCES),
                         NameOfError);

TEST_P(IngestFaults, EachCallOfTheLibrary_NothingHalfAndASecondRunCompletes)
{
    for (const FaultySystemCalls::Call call :
         {FaultySystemCalls::kOpen, FaultySystemCalls::kPWrite, FaultySystemCalls::kPRead, FaultySystemCalls::kStatx,
          FaultySystemCalls::kFStat, FaultySystemCalls::kFTruncate}) {
        FailEach<FaultySystemCalls>(call);
    }
}

TEST_P(IngestFaults, EachCallOfTheTool_NothingHalfAndASecondRunCompletes)
{
    for (const FaultyIngestCalls::Call call :
         {FaultyIngestCalls::kOpenAt, FaultyIngestCalls::kReadDir, FaultyIngestCalls::kFStatAt,
          FaultyIngestCalls::kMakeDirAt, FaultyIngestCalls::kRenameAt, FaultyIngestCalls::kUnlinkAt,
          FaultyIngestCalls::kFUTimens, FaultyIngestCalls::kFDataSync, FaultyIngestCalls::kFSync}) {
        FailEach<FaultyIngestCalls>(call);
    }
}

// Syncs 1 to 4 are those of two files and their two folders; the manifest is synced later.
TEST_P(IngestFaults, AFlushThatFails_AcknowledgesNothing)
{
    for (unsigned number = 1; number <= 4; ++number) {
        ExpectNotAcknowledged(FaultyIngestCalls::kFSync, number);
    }
    ExpectNotAcknowledged(FaultyIngestCalls::kFDataSync, 1);
}

TEST_P(IngestFaults, AFlushOfTheVolumeThatFails_AcknowledgesNothing)
{
    for (int i = 0; i < 70; ++i) {
        WriteFile(Card() / ("many" + std::to_string(i)), "M");
    }
    mCard = ReadTree(Card());
    ExpectNotAcknowledged(FaultyIngestCalls::kSyncFs, 1);
    ExpectNotAcknowledged(FaultyIngestCalls::kFDataSync, 1);
}
