// Tests that an ingest never damages the source, other people's files, or other people's lines in the manifest.
#include "IngestRunSupport.h"
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::IngestOutcome;
using orl::IngestStep;

namespace {

namespace fs = std::filesystem;

class IngestHarm : public IngestRun
{
protected:
    ProcessResult Orl(const std::vector<std::string>& inOptions = {}) const
    {
        std::vector<std::string> arguments{"ingest", Card().u8string(), Disk().u8string()};
        arguments.insert(arguments.end(), inOptions.begin(), inOptions.end());
        return RunBesideThisProgram("orl", arguments);
    }

    /// Expects that a run with this file as its manifest is refused and leaves the file unchanged.
    void ExpectRefused(const std::string& inContents, const std::string& inReason) const
    {
        fs::create_directories(Disk());
        WriteFile(Disk() / "list", inContents);
        const ProcessResult result = Orl({"--manifest", "list"});
        EXPECT_EQ(1, result.mExitCode) << result.mOutput;
        EXPECT_NE(std::string::npos, result.mErrors.find(inReason)) << result.mErrors;
        EXPECT_EQ(inContents, ReadFile(Disk() / "list"));
        EXPECT_EQ(1u, ReadTree(Disk()).size()) << "nothing else is there";
    }

    static std::string Lines(const std::string& inLine, std::size_t inBytes)
    {
        std::string text;
        while (text.size() < inBytes) {
            text += inLine;
        }
        return text;
    }

    const std::string kDigest = std::string(64, 'a');
};

} // namespace

TEST_F(IngestHarm, AFileThatIsNoManifest_IsNeverWritten)
{
    ExpectRefused(Lines("words, and no sums\n", 5000000) + "and no line break", "not a list of SHA-256 sums");
    ExpectRefused(std::string(3000, '\0'), "not a list of SHA-256 sums");
    ExpectRefused(std::string(3000000, 'x'), "not a list of SHA-256 sums");
    ExpectRefused(kDigest + "  a name\nwords\n", "not a list of SHA-256 sums");
    ExpectRefused("the start of something", "not a list of SHA-256 sums");
    ExpectRefused(std::string("#\0x\n", 4), "not a list of SHA-256 sums");
}

TEST_F(IngestHarm, AManifestOfManyGigabytes_IsRefusedUnread)
{
    fs::create_directories(Disk());
    WriteFile(Disk() / "list", "");
    fs::resize_file(Disk() / "list", std::uintmax_t{10} << 30);
    const ProcessResult result = Orl({"--manifest", "list"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("too large for a manifest")) << result.mErrors;
    EXPECT_EQ(std::uintmax_t{10} << 30, fs::file_size(Disk() / "list"));
}

TEST_F(IngestHarm, AnIngestedFileAsTheManifest_IsRefused)
{
    ASSERT_EQ(0, Orl().mExitCode);
    fs::remove(Card() / "a");
    const ProcessResult result = Orl({"--manifest", "a"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ(mCard["a"], ReadFile(Disk() / "a"));
}

// The manifest ends with another program's line, without a line break.
TEST_F(IngestHarm, ALastLineWithoutABreak_Survives)
{
    fs::create_directories(Disk());
    const std::string line = kDigest + "  somebody's clip";
    WriteFile(Disk() / kManifest, line);
    ASSERT_EQ(0, Orl().mExitCode);
    const std::string manifest = ReadFile(Disk() / kManifest);
    EXPECT_EQ(line + "\n", manifest.substr(0, line.size() + 1));
    EXPECT_EQ(4u, ReadManifest(Disk() / kManifest).size());
}

// The manifest contains every form of line that checksum programs write. The run replaces only orl's own lines.
TEST_F(IngestHarm, ForeignLines_SurviveAnExchangeByteForByte)
{
    ASSERT_TRUE(Run({}).mTroubles.empty());
    const std::string ours = ReadFile(Disk() / kManifest);
    const std::size_t second = ours.find('\n') + 1;
    const std::string before = "# a remark\r\n\n" + kDigest + " *binary\n";
    const std::string between = std::string(32, 'B') + "  md5 of something\nSHA256 (clip (1).mov) = " + kDigest + "\n";
    const std::string after =
        kDigest + "  caf\xE9\r\n\\" + kDigest + "  a\\\\b\\nc\n" + std::string(128, '1') + "  long";
    WriteFile(Disk() / kManifest, before + ours.substr(0, second) + between + ours.substr(second) + after);
    for (const char* name : {"a", "b"}) {
        ChangeOnCard(name, "changed " + std::string(name));
    }
    ASSERT_TRUE(Run({}, true).mTroubles.empty());
    const std::string kept = before + between + ours.substr(ours.find('\n', second) + 1) + after + "\n";
    EXPECT_EQ(kept + ReferenceSha256("changed a") + "  a\n" + ReferenceSha256("changed b") + "  b\n",
              ReadFile(Disk() / kManifest));
}

// Files named like temporary files are ingested, and those in other folders of the destination stay: only files listed
// in the record are deleted.
TEST_F(IngestHarm, FilesThatAreNamedLikeTemporaries_AreBroughtInAndNotDeleted)
{
    const std::vector<std::string> names{".orl-0123456789abcdef.part", kUnfinished, "ingest.sha256.part", ".orl-names"};
    fs::create_directories(Disk() / "other");
    for (const std::string& name : names) {
        WriteFile(Card() / name, "of the card");
        WriteFile(Disk() / "other" / name, "of the disk");
        mCard[name] = "of the card";
    }
    EXPECT_TRUE(Run({}).mTroubles.empty());
    for (const std::string& name : names) {
        EXPECT_EQ("of the card", ReadFile(Card() / name)) << name;
        EXPECT_EQ("of the card", ReadFile(Disk() / name)) << name;
        EXPECT_EQ("of the disk", ReadFile(Disk() / "other" / name)) << name;
    }
    EXPECT_EQ(3 + names.size(), ReadManifest(Disk() / kManifest).size());
}

// The destination contains the source, and the record of a killed run lists a temporary file where the source is now.
TEST_F(IngestHarm, ARecordedTemporaryInsideTheSource_IsNotDeleted)
{
    WriteFile(Card() / kUnfinished, "a file of the source");
    WriteFile(mFolder.Host() / kRecord, RecordOf("T card/" + std::string(kUnfinished) + "\n"));
    const ProcessResult result = RunBesideThisProgram("orl", {"ingest", Card().u8string(), mFolder.Host().u8string()});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("a file of the source", ReadFile(Card() / kUnfinished));
    EXPECT_EQ("a file of the source", ReadFile(mFolder.Host() / kUnfinished));
}

TEST_F(IngestHarm, ARecordThatIsNotOurs_DeletesNothing)
{
    fs::create_directories(Disk() / "d");
    WriteFile(Disk() / "clip", "C");
    WriteFile(mFolder.Host() / kUnfinished, "above the destination");
    WriteFile(Disk() / "d" / kUnfinished, "ours");
    WriteFile(Disk() / kRecord,
              RecordOf("T clip\nT ../" + std::string(kUnfinished) + "\nT d/../../" + kUnfinished + "\nT /" + kUnfinished
                       + "\nT d\nX\nM x\nW -1\nT d/" + kUnfinished + "\nT torn"));
    EXPECT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ("C", ReadFile(Disk() / "clip"));
    EXPECT_EQ("above the destination", ReadFile(mFolder.Host() / kUnfinished));
    EXPECT_FALSE(fs::exists(Disk() / "d" / kUnfinished));
    WriteFile(Disk() / kRecord, "a file of somebody's");
    EXPECT_EQ(1, Orl().mExitCode);
    EXPECT_EQ("a file of somebody's", ReadFile(Disk() / kRecord));
}

// The first run rewrites the manifest in between, which must not release the lock.
TEST_F(IngestHarm, ASecondRunDuringAnExchange_IsRefused)
{
    ASSERT_TRUE(Run({}).mTroubles.empty());
    for (const char* name : {"a", "b", "c"}) {
        ChangeOnCard(name, std::string("changed ") + name);
    }
    int refused = 0;
    const IngestOutcome outcome = Run(
        [&](IngestStep inStep, const orl::IngestItem&) {
            if (inStep == IngestStep::kInPlace || inStep == IngestStep::kVerified) {
                const ProcessResult result = Orl({"--replace"});
                EXPECT_EQ(1, result.mExitCode);
                refused += result.mErrors.find("another ingest is using") != std::string::npos ? 1 : 0;
            }
        },
        true);
    EXPECT_TRUE(outcome.mTroubles.empty());
    EXPECT_EQ(6, refused);
    ExpectInPlace("abc");
}

// Lines that a killed run turned into comments are deleted; other people's comments stay.
TEST_F(IngestHarm, LinesWithdrawnByAKilledRun_GoAtTheNext)
{
    fs::create_directories(Disk());
    const std::string foreign = "#" + kDigest.substr(1) + "  a remark of this form\n";
    WriteFile(Disk() / kManifest, foreign + "#" + kDigest.substr(1) + "  b\n");
    WriteFile(Disk() / kRecord, RecordOf("W " + std::to_string(foreign.size()) + "\nW 1\n"));
    EXPECT_TRUE(Run({}).mTroubles.empty());
    const std::string manifest = ReadFile(Disk() / kManifest);
    EXPECT_EQ(foreign, manifest.substr(0, foreign.size()));
    EXPECT_EQ(std::string::npos, manifest.find('#', 1)) << manifest;
    EXPECT_EQ(3u, ReadManifest(Disk() / kManifest).size());
}

TEST_F(IngestHarm, StoppedWhileItIsPlanned_BeginsNothing)
{
    mIsStopped = true;
    try {
        Run({});
        ADD_FAILURE() << "the run was stopped before";
    } catch (const orl::Failure& failure) {
        EXPECT_EQ(orl::kExitStopped, failure.ExitCode());
    }
    EXPECT_TRUE(fs::is_empty(Disk()));
}
