// Tests files and folders that are removed or replaced during the verification. On Windows open files prevent this.
#include "VerifySupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;
using orl::VerifiedFile;
using orl::VerifyOutcome;

namespace fs = std::filesystem;

namespace {

constexpr char kClip[] = "CLIP/clip.mov";

using VerifyHereOnLinux = VerifyHere;

} // namespace

TEST_F(VerifyHereOnLinux, AFileThatIsRemovedWhileItIsRead_IsMissing)
{
    AfterABlockOf(kClip, [this] { fs::remove(Disk() / kClip); });
    const VerifyOutcome outcome = Run();
    EXPECT_EQ(VerifiedFile::kMissing, Of(outcome, kClip).mState);
    EXPECT_EQ(kVerifyMissing, ExitCodeOf(outcome));
    EXPECT_EQ(3u, outcome.Count(VerifiedFile::kVerified));
}

// The file that was read has the listed contents; the file that is in place now has not been read.
TEST_F(VerifyHereOnLinux, AFileThatIsReplacedWhileItIsRead_HasChanged)
{
    fs::copy_file(Disk() / kClip, Away());
    fs::last_write_time(Away(), fs::last_write_time(Disk() / kClip));
    AfterABlockOf(kClip, [this] { fs::rename(Away(), Disk() / kClip); });
    const VerifyOutcome outcome = Run();
    EXPECT_EQ(VerifiedFile::kChanged, Of(outcome, kClip).mState);
    EXPECT_EQ("it changed while it was read", Of(outcome, kClip).mReason);
    EXPECT_EQ(kVerifyChanged, ExitCodeOf(outcome));
}

// The open file is verified to its end. The other files are reported as not checked, not as missing.
TEST_F(VerifyHereOnLinux, AFolderThatVanishesDuringTheFirstFile_IsGone)
{
    AfterABlockOf(kClip, [this] { fs::rename(Disk(), Away()); });
    ExpectGone(Run(), 1);
}

TEST_F(VerifyHereOnLinux, AFolderThatVanishesDuringTheLastFile_IsGone)
{
    fs::remove(Disk() / "none");
    WriteList();
    AfterABlockOf("a", [this] { fs::rename(Disk(), Away()); });
    ExpectGone(Run(), 3);
}

// The file must not be reported as changed, because the folder that contained it is gone.
TEST_F(VerifyHereOnLinux, AFolderThatVanishesWithAChangeOfTheFile_IsGone)
{
    AfterABlockOf(kClip, [this] {
        fs::resize_file(Disk() / kClip, 3000002);
        fs::rename(Disk(), Away());
    });
    ExpectGone(Run(), 0);
}
