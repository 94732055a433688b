// Runs orl ingest as a user does.
#include "IngestTestSupport.h"
#include <ProcessRunner.h>

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

bool IsOneLineOfOrl(const std::string& inErrors)
{
    return inErrors.compare(0, 5, "orl: ") == 0 && inErrors.find('\n') == inErrors.size() - 1;
}

bool Shows(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

std::string LastLine(const ProcessResult& inResult)
{
    const std::string text = inResult.mOutput.substr(0, inResult.mOutput.find_last_not_of("\r\n") + 1);
    return text.substr(text.find_last_of('\n') + 1);
}

class OrlIngest : public testing::Test
{
protected:
    OrlIngest()
    {
        mFolder.MakeFolder("card/CLIP/empty");
        mFolder.MakeFile("card/a.wav", MakeWav(48000, 48000 * 2 + 1920));
        mFolder.MakeFile("card/CLIP/clip.mov", std::string(3000000, 'm') + "end");
        mFolder.MakeFile("card/none", "");
        mCard = ReadTree(Card());
    }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }

    ProcessResult Ingest(const std::vector<std::string>& inOptions = {}) const
    {
        std::vector<std::string> arguments{"ingest", Card().u8string(), Disk().u8string()};
        arguments.insert(arguments.end(), inOptions.begin(), inOptions.end());
        return RunBesideThisProgram("orl", arguments);
    }

    TempFolder mFolder;
    FileTree mCard;
};

} // namespace

TEST(ReferenceSha256, KnownAnswers)
{
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", ReferenceSha256(""));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", ReferenceSha256("abc"));
    EXPECT_EQ("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
              ReferenceSha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"));
}

TEST_F(OrlIngest, FirstRun_BringsTheTreeWithTimesAndManifest)
{
    const auto time = fs::last_write_time(Card() / "a.wav") - std::chrono::hours(5000);
    fs::last_write_time(Card() / "a.wav", time);
    const ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    ExpectIngested(mCard, Disk());
    // The library's times have a resolution of 100 ns.
    const auto kept = time - fs::last_write_time(Disk() / "a.wav");
    EXPECT_TRUE(kept >= kept.zero() && kept < std::chrono::nanoseconds(100)) << kept.count();
    EXPECT_TRUE(Shows(result.mOutput, "3 files copied and read back")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "00:00:02:01")) << "the length of the sound at 25 frames a second";
    EXPECT_EQ(std::string::npos, result.mOutput.find('\r')) << "no progress where output is no terminal";
}

TEST_F(OrlIngest, LastLine_SaysWhetherTheSourceMayBeErased)
{
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 1 destination.", LastLine(Ingest()));
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 1 destination.", LastLine(Ingest()));
    mFolder.MakeFile("disk/a.wav", "a different file");
    fs::remove(Disk() / "ingest.sha256");
    const ProcessResult refused = Ingest();
    EXPECT_NE(0, refused.mExitCode);
    EXPECT_EQ(0u, LastLine(refused).find("Not safe to erase the source: ")) << refused.mOutput;
}

TEST_F(OrlIngest, MoreCopiesThanDestinations_AreRefusedBeforeAnythingIsWritten)
{
    const ProcessResult result = Ingest({"--copies", "2"});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    EXPECT_EQ("", result.mOutput);
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(OrlIngest, SecondRun_SkipsWhatIsVerified)
{
    ASSERT_EQ(0, Ingest().mExitCode);
    mFolder.MakeFile("card/more", "more");
    const ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_TRUE(Shows(result.mOutput, "1 file copied and read back")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "3 verified before")) << result.mOutput;
    mCard["more"] = "more";
    ExpectIngested(mCard, Disk());
}

// Files that another program has already copied are compared, not copied, and not trusted by name.
TEST_F(OrlIngest, FilesThatAreThereAlready_AreComparedAndAcknowledged)
{
    fs::copy(Card(), Disk(), fs::copy_options::recursive);
    ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    ExpectIngested(mCard, Disk());
    EXPECT_TRUE(Shows(result.mOutput, "0 files copied and read back")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "3 present and compared")) << result.mOutput;
    result = Ingest();
    EXPECT_TRUE(Shows(result.mOutput, "3 verified before")) << result.mOutput << "they are not read again";
}

TEST_F(OrlIngest, ASourceWithoutFiles_HasAnExitCodeOfItsOwn)
{
    mFolder.MakeFolder("empty/folder");
    const ProcessResult result =
        RunBesideThisProgram("orl", {"ingest", (mFolder.Host() / "empty").u8string(), Disk().u8string()});
    EXPECT_EQ(9, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    EXPECT_TRUE(Shows(result.mErrors, "contains no files")) << result.mErrors;
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(OrlIngest, SeveralDestinations_AreToldEach)
{
    const std::string other = (mFolder.Host() / "other disk").u8string();
    ProcessResult result = Ingest({other});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    ExpectIngested(mCard, Disk());
    ExpectIngested(mCard, mFolder.Host() / "other disk");
    EXPECT_TRUE(Shows(result.mOutput, "2 of 2")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "\"" + Disk().u8string() + "\": 3 files copied and read back")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "\"" + other + "\": 3 files copied and read back")) << result.mOutput;
    WriteFile(mFolder.Host() / "other disk/a.wav", "another file");
    result = Ingest({other});
    EXPECT_EQ(8, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
    EXPECT_TRUE(Shows(result.mErrors,
                      "orl: ingest: \"" + other + "\": cannot copy \"a.wav\": the destination has a different file"))
        << result.mErrors;
    EXPECT_TRUE(Shows(result.mOutput, "1 of 2")) << result.mOutput;
}

TEST_F(OrlIngest, AnotherFileOfTheName_StaysAndIsTold)
{
    mFolder.MakeFolder("disk/CLIP");
    for (const std::string& other : {std::string("other size"), std::string(3000003, 'x')}) {
        WriteFile(Disk() / "CLIP/clip.mov", other);
        const ProcessResult result = Ingest();
        EXPECT_EQ(8, result.mExitCode);
        EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
        EXPECT_TRUE(Shows(result.mErrors, "CLIP/clip.mov")) << result.mErrors;
        EXPECT_EQ(other, ReadFile(Disk() / "CLIP/clip.mov"));
        EXPECT_EQ(mCard["a.wav"], ReadFile(Disk() / "a.wav")) << "the others are brought in all the same";
    }
}

TEST_F(OrlIngest, Replace_ExchangesFilesAndLines)
{
    ASSERT_EQ(0, Ingest().mExitCode);
    mFolder.MakeFile("card/none", "now it holds something");
    mFolder.MakeFile("card/a.wav", MakeWav(44100, 48000 * 2 + 1920)); // the new contents have the same size
    mCard = ReadTree(Card());
    EXPECT_EQ(8, Ingest().mExitCode);
    const ProcessResult result = Ingest({"--replace"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    ExpectIngested(mCard, Disk());
}

TEST_F(OrlIngest, AFolderInTheWay_IsTold)
{
    mFolder.MakeFolder("disk/none");
    const ProcessResult result = Ingest({"--replace"});
    EXPECT_EQ(8, result.mExitCode);
    EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
}

// Programs learn of each file, also of those that the plan refuses.
TEST_F(OrlIngest, Json_HasALineForEachFileThatIsRefused)
{
    mFolder.MakeFolder("disk");
    mFolder.MakeFile("disk/a.wav", "another file");
    mFolder.MakeFile("disk/CLIP", "a file in place of the folder");
    const ProcessResult result = Ingest({"--json"});
    EXPECT_EQ(8, result.mExitCode);
    const std::string sizes[] = {std::to_string(mCard.at("CLIP/clip.mov").size()),
                                 std::to_string(mCard.at("a.wav").size())};
    EXPECT_TRUE(
        Shows(result.mOutput, "\"file\": \"CLIP/clip.mov\", \"state\": \"notInPlace\", \"bytes\": " + sizes[0] + "}\n"))
        << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "\"file\": \"a.wav\", \"state\": \"notInPlace\", \"bytes\": " + sizes[1] + "}\n"))
        << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "\"file\": \"none\", \"state\": \"copied\", \"bytes\": 0, \"sha256\": "))
        << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "{\"summary\": true, \"files\": 3, ")) << result.mOutput;
    // At a destination that is refused, no file is in place.
    mFolder.MakeFolder("second");
    mFolder.MakeFile("second/ingest.sha256", "this is no list of checksums");
    const ProcessResult two = Ingest({(mFolder.Host() / "second").u8string(), "--json"});
    std::size_t lines = 0;
    for (std::size_t at = 0; (at = two.mOutput.find("\"state\": ", at)) != std::string::npos; ++at) {
        ++lines;
    }
    EXPECT_EQ(6u, lines) << two.mOutput << two.mErrors;
}

TEST_F(OrlIngest, UnfinishedFilesOfAKilledRun_AreCleared)
{
    mFolder.MakeFolder("disk/CLIP");
    mFolder.MakeFile("disk/CLIP/" + std::string(kUnfinished), "half");
    mFolder.MakeFile("disk/ingest.sha256", "0123456789abcdef torn");
    mFolder.MakeFile("disk/" + std::string(kRecord), RecordOf("T CLIP/" + std::string(kUnfinished) + "\nM 0\n"));
    const ProcessResult result = Ingest();
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    ExpectIngested(mCard, Disk());
}

TEST_F(OrlIngest, Manifest_KeepsTheLinesOfOthers)
{
    mFolder.MakeFolder("disk");
    const std::string other = ReferenceSha256("x") + "  elsewhere\n# a remark\n";
    mFolder.MakeFile("disk/ingest.sha256", other);
    EXPECT_EQ(0, Ingest().mExitCode);
    EXPECT_EQ(other, ReadFile(Disk() / kManifest).substr(0, other.size()));
}

TEST_F(OrlIngest, Rate_SetsTheFramesOfTheLengths)
{
    EXPECT_TRUE(Shows(Ingest({"--rate", "50"}).mOutput, "00:00:02:02"));
    EXPECT_TRUE(Shows(Ingest({"--rate", "29.97df"}).mOutput, "00;00;02;01"));
}

TEST_F(OrlIngest, WhatCannotBeBegun_IsSaidOnOneLine)
{
    struct Row
    {
        int mLine;
        std::vector<std::string> mArguments;
        int mExitCode;
        const char* mReason;
    };
    const std::string card = Card().u8string();
    const std::string disk = Disk().u8string();
    const Row rows[] = {
        {__LINE__, {card + "-missing", disk}, 1, "is not a folder"},
        {__LINE__, {card + "/a.wav", disk}, 1, "is not a folder"},
        {__LINE__, {card, card + "/a.wav"}, 1, "a.wav\" is not a folder"},
        {__LINE__, {card, card}, 1, "lies inside the source"},
        {__LINE__, {card, card + "/CLIP/new"}, 1, "lies inside the source"},
        {__LINE__, {card, disk, disk}, 2, "lies inside the destination"},
        {__LINE__, {card, disk, disk + "/below"}, 2, "lies inside the destination"},
        {__LINE__, {card, disk, "--manifest", "none"}, 1, "the manifest's name"},
        {__LINE__, {card, disk, "--manifest", "a/b"}, 2, "--manifest"},
        {__LINE__, {card, disk, "--rate", "26"}, 2, "unknown frame rate"},
        {__LINE__, {card, disk, "--files-at-once", "0"}, 2, "--files-at-once"},
        {__LINE__, {card}, 2, "DEST"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        std::vector<std::string> arguments = row.mArguments;
        arguments.insert(arguments.begin(), "ingest");
        const ProcessResult result = RunBesideThisProgram("orl", arguments);
        EXPECT_EQ(row.mExitCode, result.mExitCode);
        EXPECT_TRUE(IsOneLineOfOrl(result.mErrors)) << result.mErrors;
        EXPECT_TRUE(Shows(result.mErrors, row.mReason)) << result.mErrors;
        EXPECT_FALSE(fs::exists(Disk()));
    }
}
