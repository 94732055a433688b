// Tests an ingest during which files, folders or the stop flag change between two steps of a file.
#include "IngestRunSupport.h"

#include <Failure.h>
#include <IngestManifest.h>
#include <ORLFile.h>
#include <Text.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;
using orl::IngestItem;
using orl::IngestManifest;
using orl::IngestOutcome;
using orl::IngestStep;

namespace {

namespace fs = std::filesystem;

} // namespace

TEST_F(IngestRun, AFileThatGrowsWhileItIsCopied_IsNotKept)
{
    const IngestOutcome outcome = Run(Once(IngestStep::kBlockCopied, "b", [this] {
        std::ofstream(Card() / "b", std::ios::binary | std::ios::app) << "more";
    }));
    ExpectTrouble(outcome, orl::kExitChanged, "\"b\" changed while it was copied");
    ExpectInPlace("ac");
    mCard["b"] += "more";
    EXPECT_TRUE(Run({}).mTroubles.empty());
    ExpectInPlace("abc");
}

TEST_F(IngestRun, AFileThatIsRewrittenWhileItIsCopied_IsNotKept)
{
    const IngestOutcome outcome = Run(Once(IngestStep::kBlockCopied, "b", [this] {
        std::fstream file(Card() / "b", std::ios::binary | std::ios::in | std::ios::out);
        file << "other";
        file.close();
        fs::last_write_time(Card() / "b", fs::last_write_time(Card() / "b") + std::chrono::seconds(1));
    }));
    ExpectTrouble(outcome, orl::kExitChanged, "\"b\" changed");
    ExpectInPlace("ac");
}

TEST_F(IngestRun, AFileThatShrinksWhileItIsCopied_IsNotKept)
{
    const IngestOutcome outcome =
        Run(Once(IngestStep::kBlockCopied, "b", [this] { fs::resize_file(Card() / "b", 1100000); }));
    ExpectTrouble(outcome, orl::kExitChanged, "\"b\" changed");
    ExpectInPlace("ac");
}

TEST_F(IngestRun, ACardThatVanishes_EndsTheRunWithOneLine)
{
    const IngestOutcome outcome =
        Run(Once(IngestStep::kInPlace, "a", [this] { fs::rename(Card(), Card().u8string() + "-away"); }));
    ExpectTrouble(outcome, orl::kExitDisappeared, "is gone");
    ExpectInPlace("a");
}

// The mount point of the card remains, but is a different folder.
TEST_F(IngestRun, ACardThatLeavesItsMountPoint_EndsTheRunWithOneLine)
{
    const IngestOutcome outcome = Run(Once(IngestStep::kInPlace, "a", [this] {
        fs::rename(Card(), Card().u8string() + "-away");
        fs::create_directory(Card());
        WriteFile(Card() / "other", "of the mount point");
    }));
    ExpectTrouble(outcome, orl::kExitDisappeared, "is gone");
    ExpectInPlace("a");
}

TEST_F(IngestRun, ACardWhoseFilesAreAllGone_EndsTheRunWithOneLine)
{
    const IngestOutcome outcome = Run(Once(IngestStep::kInPlace, "a", [this] {
        for (const char* name : {"a", "b", "c"}) {
            fs::remove(Card() / name);
        }
    }));
    ExpectTrouble(outcome, orl::kExitDisappeared, "is gone");
    ExpectInPlace("a");
}

TEST_F(IngestRun, AFileThatIsTakenFromTheCard_EndsNothing)
{
    const IngestOutcome outcome = Run(Once(IngestStep::kInPlace, "a", [this] { fs::remove(Card() / "b"); }));
    ExpectTrouble(outcome, orl::kExitUnreadable, "\"b\"");
    ExpectInPlace("ac");
}

TEST_F(IngestRun, ACopyThatReadsBackDifferently_IsNotKept)
{
    const IngestOutcome outcome = Run([this](IngestStep inStep, const IngestItem& inItem) {
        if (inStep == IngestStep::kCopied && inItem.mName == "b") {
            const fs::path path = Unfinished();
            std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
            file.seekp(1234567);
            file << '\x01';
        }
    });
    ExpectTrouble(outcome, orl::kExitMismatch, "reads back differently");
    ExpectInPlace("ac");
}

TEST_F(IngestRun, StoppedByTheUser_LeavesNoHalfFile)
{
    // Requests the stop at the first step of "b"; the run polls for the request.
    const IngestOutcome outcome =
        Run([this](IngestStep, const IngestItem& inItem) { mIsStopped = mIsStopped || inItem.mName == "b"; });
    EXPECT_TRUE(outcome.mTroubles.empty());
    for (const auto& [name, contents] : ReadTree(Disk())) {
        EXPECT_TRUE(name == kManifest || contents == mCard[name]) << name;
    }
    ReadManifest(Disk() / kManifest);
    mIsStopped = false;
    EXPECT_TRUE(Run({}).mTroubles.empty());
    ExpectInPlace("abc");
}

TEST_F(IngestRun, AFileThatAppearsAtTheDestinationMeanwhile_IsNotOverwritten)
{
    const IngestOutcome outcome =
        Run(Once(IngestStep::kVerified, "b", [this] { WriteFile(Disk() / "b", "somebody's"); }));
    ExpectTrouble(outcome, orl::kExitNameConflict, "\"b\"");
    EXPECT_EQ("somebody's", ReadFile(Disk() / "b"));
    EXPECT_EQ(0u, ReadManifest(Disk() / kManifest).count("b"));
}

// A replaced file's line must be deleted first: later runs would trust a line whose file no longer exists.
TEST_F(IngestRun, TheLineOfAReplacedFile_IsGoneBeforeTheFileIs)
{
    ASSERT_TRUE(Run({}).mTroubles.empty());
    ChangeOnCard("a", std::string(2500000, 'A')); // the new contents have the same size
    ChangeOnCard("b", "shorter");
    const IngestOutcome outcome = Run(
        [this](IngestStep inStep, const IngestItem& inItem) {
            const bool isHeld = ReadManifest(Disk() / kManifest).count(inItem.mName) != 0;
            EXPECT_EQ(inStep != IngestStep::kInPlace, isHeld) << inItem.mName << static_cast<int>(inStep);
        },
        true);
    EXPECT_TRUE(outcome.mTroubles.empty());
    ExpectInPlace("abc");
}

TEST_F(IngestRun, StoppedBeforeAFileIsReplaced_KeepsItsLine)
{
    ASSERT_TRUE(Run({}).mTroubles.empty());
    const FileTree before = mCard;
    ChangeOnCard("b", "shorter");
    Run([this](IngestStep, const IngestItem& inItem) { mIsStopped = mIsStopped || inItem.mName == "b"; }, true);
    mIsStopped = false;
    ExpectIngested(before, Disk());
    EXPECT_TRUE(Run({}, true).mTroubles.empty());
    ExpectInPlace("abc");
}

TEST_F(IngestRun, AFileThatCannotBeReplaced_KeepsItsLine)
{
    ASSERT_TRUE(Run({}).mTroubles.empty());
    const FileTree before = mCard;
    ChangeOnCard("b", "shorter");
    ORL::File holder; // shares only read access, so the file cannot be replaced
    const IngestOutcome outcome =
        Run(Once(IngestStep::kVerified, "b",
                 [&] {
                     ASSERT_EQ(ORL::kSuccess,
                               holder.Create(mFolder.Path(u"disk\\b"), ORL::FileAccessFlags::kFileAccess_Read,
                                             ORL::FileShareModeFlags::kFileShare_Read,
                                             ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                                             ORL::FileAttributesFlags::kFileAttribute_Normal, true));
                 }),
            true);
    holder.Close();
    ASSERT_EQ(1u, outcome.mTroubles.size());
    EXPECT_EQ(orl::kExitFailure, outcome.mTroubles[0].mExitCode) << outcome.mTroubles[0].mText;
    ExpectIngested(before, Disk());
    EXPECT_TRUE(Run({}, true).mTroubles.empty());
    ExpectInPlace("abc");
}

TEST_F(IngestRun, TheSecondOfTwoAtOnce_IsRefused)
{
    Run(Once(IngestStep::kOpened, "b", [this] {
        const orl::IngestRoots roots = orl::MakeRoots(Card().u8string(), Disk().u8string());
        orl::IngestRecord record(roots, kManifest);
        try {
            record.Open();
            ADD_FAILURE() << "two may write one manifest";
        } catch (const orl::Failure& failure) {
            EXPECT_NE(std::string::npos, std::string(failure.what()).find("another ingest is using"));
        }
    }));
    ExpectInPlace("abc");
}

TEST(IngestManifestLine, NamesComeBackAsTheyWere)
{
    const std::string digest(64, 'a');
    for (const std::string& name : {std::string("plain"), std::string("two  blanks "), std::string("back\\slash"),
                                    std::string("line\nbreak\r"), std::string("*star"), std::string("caf\xE9")}) {
        const std::string text = orl::FormatManifestLine({name, digest});
        ASSERT_EQ(text.size() - 1, text.find('\n')) << "one line";
        IngestManifest::Line line;
        ASSERT_TRUE(orl::ParseManifestLine(text.substr(0, text.size() - 1), line)) << text;
        EXPECT_EQ(name, line.mName);
        EXPECT_EQ(digest, line.mDigest);
    }
    EXPECT_EQ("\\" + digest + "  a\\\\b\\nc\n", orl::FormatManifestLine({"a\\b\nc", digest}));
    IngestManifest::Line line;
    EXPECT_TRUE(orl::ParseManifestLine(digest + " *binary", line));
    EXPECT_EQ("binary", line.mName);
    EXPECT_TRUE(orl::ParseManifestLine(digest + "  of Windows\r", line));
    EXPECT_EQ("of Windows", line.mName);
    for (const std::string& other : {std::string(), std::string("# remark"), digest, digest + "  ", digest + "x  name",
                                     digest.substr(1) + "  name", std::string(64, 'g') + "  name",
                                     "\\" + digest + "  a\\x", "\\" + digest + "  a\\"}) {
        EXPECT_FALSE(orl::ParseManifestLine(other, line)) << other;
    }
}
