// Tests files and folders that change or disappear while they are verified.
#include "VerifySupport.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;
using orl::VerifiedFile;
using orl::VerifyOutcome;

namespace fs = std::filesystem;

namespace {

constexpr char kClip[] = "CLIP/clip.mov";

void ExpectChangedDuringTheRead(const VerifiedFile& inFile)
{
    EXPECT_EQ(VerifiedFile::kChanged, inFile.mState);
    EXPECT_EQ("it changed while it was read", inFile.mReason);
}

void SetLater(const fs::path& inFile)
{
    fs::last_write_time(inFile, fs::last_write_time(inFile) + std::chrono::seconds(10));
}

} // namespace

// Each change leaves the listed contents, or different contents of the same size; the reads may have seen either.
TEST_F(VerifyHere, AFileThatChangesWhileItIsRead_HasChanged)
{
    const fs::path clip = Disk() / kClip;
    const std::string contents = ReadFile(clip);
    struct Row
    {
        int mLine;
        std::function<void()> mChange;
    };
    const Row rows[] = {
        {__LINE__, [&] { SetLater(clip); }},
        {__LINE__,
         [&] {
             std::fstream(clip, std::ios::binary | std::ios::in | std::ios::out).seekp(2999999).put('x');
             SetLater(clip);
         }},
        {__LINE__, [&] { std::ofstream(clip, std::ios::binary | std::ios::app) << "more"; }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        WriteFile(clip, contents);
        AfterABlockOf(kClip, row.mChange);
        const VerifyOutcome outcome = Run();
        ExpectChangedDuringTheRead(Of(outcome, kClip));
        EXPECT_EQ(kVerifyChanged, ExitCodeOf(outcome));
        EXPECT_EQ(3u, outcome.Count(VerifiedFile::kVerified)) << "the others are verified";
    }
}

// The read of the last block delivers fewer bytes. This is a changed file, not a read error of the disk.
TEST_F(VerifyHere, AFileThatShrinksWhileItIsRead_HasChanged)
{
    constexpr std::size_t kSize = 12 << 20; // the last block is read after the first one has been delivered
    WriteFile(Disk() / "a", std::string(kSize, 'a'));
    WriteList();
    AfterABlockOf("a", [this] { fs::resize_file(Disk() / "a", kSize - 100); });
    const VerifyOutcome outcome = Run();
    ExpectChangedDuringTheRead(Of(outcome, "a"));
    EXPECT_EQ(kVerifyChanged, ExitCodeOf(outcome));
    EXPECT_EQ(3u, outcome.Count(VerifiedFile::kVerified)) << "the others are verified";
}

TEST_F(VerifyHere, AFolderThatVanishesWhileItIsListed_IsGone)
{
    mOnFirstPoll = Once([this] { fs::rename(Disk(), Away()); });
    const VerifyOutcome outcome = Run();
    EXPECT_EQ(kVerifyGone, ExitCodeOf(outcome));
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ("verify: the folder \"" + Disk().u8string() + "\" is gone", outcome.mTroubles[0].mText);
    EXPECT_TRUE(outcome.mFiles.empty());
}

// If the whole folder has disappeared, its files must not be reported as missing.
TEST_F(VerifyHere, AFolderThatVanishesBeforeItsFilesAreRead_IsGone)
{
    for (const bool isQuick : {false, true}) {
        mSettings.mIsQuick = isQuick;
        mOnListed = [this] { fs::rename(Disk(), Away()); };
        ExpectGone(Run(), 0);
        fs::rename(Away(), Disk());
    }
}

// An unmounted disk leaves an empty folder at its path; another disk may have files of the same names there.
TEST_F(VerifyHere, AnotherFolderAtItsPath_IsNotVerified)
{
    mFolder.MakeFolder("other");
    for (const bool hasFiles : {false, true}) {
        mOnListed = [this] {
            fs::rename(Disk(), Away());
            fs::rename(mFolder.Host() / "other", Disk());
        };
        ExpectGone(Run(), 0);
        fs::rename(Disk(), mFolder.Host() / "other");
        fs::rename(Away(), Disk());
        if (!hasFiles) {
            fs::remove(mFolder.Host() / "other");
            fs::copy(Disk(), mFolder.Host() / "other", fs::copy_options::recursive);
        }
    }
}

TEST_F(VerifyHere, AFolderBelowThatVanishes_LosesItsOwnFilesAlone)
{
    mOnListed = [this] { fs::rename(Disk() / "CLIP", Away()); };
    const VerifyOutcome outcome = Run();
    EXPECT_EQ(kVerifyMissing, ExitCodeOf(outcome));
    EXPECT_EQ(VerifiedFile::kMissing, Of(outcome, kClip).mState);
    EXPECT_EQ(VerifiedFile::kMissing, Of(outcome, "CLIP/deep/sector").mState);
    EXPECT_EQ(2u, outcome.Count(VerifiedFile::kVerified));
}

TEST_F(VerifyHere, AFileThatVanishesAfterTheListing_IsMissing)
{
    mOnListed = [this] { fs::remove(Disk() / "a"); };
    const VerifyOutcome outcome = Run();
    EXPECT_EQ(kVerifyMissing, ExitCodeOf(outcome));
    EXPECT_EQ(VerifiedFile::kMissing, Of(outcome, "a").mState);
    EXPECT_EQ(3u, outcome.Count(VerifiedFile::kVerified));
}
