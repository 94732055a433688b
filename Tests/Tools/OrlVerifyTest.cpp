// Runs orl verify as a user does.
#include <VerifyTestSupport.h>

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace fs = std::filesystem;

using OrlVerify = VerifiedTree;

TEST_F(OrlVerify, FilesAsListed_AreVerifiedAndNothingChanges)
{
    const FileTree before = ReadTree(Disk());
    const ProcessResult result = Verify();
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "\": 4 files verified, 3.0 MB read in ")) << result.mOutput;
    EXPECT_EQ(std::string::npos, result.mOutput.find('\r')) << "no progress if the output is no terminal";
    EXPECT_EQ(before, ReadTree(Disk()));
}

TEST_F(OrlVerify, EachDestinationOfAnIngest_IsVerified)
{
    const std::string one = (mFolder.Host() / "one").u8string();
    const std::string other = (mFolder.Host() / "other").u8string();
    ASSERT_EQ(0,
              RunBesideThisProgram("orl", {"ingest", Disk().u8string(), one, other, "--manifest", "list"}).mExitCode);
    const std::vector<std::string> verify{"verify", one, other, "--manifest", "list"};
    ProcessResult result = RunBesideThisProgram("orl", verify);
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "\"" + one + "\": 5 files verified")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "\"" + other + "\": 5 files verified")) << result.mOutput;
    WriteFile(mFolder.Host() / "one/a", "xyz");
    result = RunBesideThisProgram("orl", verify);
    ExpectEnd(result, kVerifyChanged,
              {Shown(mFolder.Host() / "one", "a") + " has changed: its SHA-256 is not the listed one"});
    EXPECT_TRUE(Shows(result.mOutput, "\"" + other + "\": 5 files verified")) << result.mOutput;
}

// Flips one bit in each block, and one in the last byte; neither size nor time changes.
TEST_F(OrlVerify, OneBitThatFlipped_IsFound)
{
    const fs::path file = Disk() / "CLIP/clip.mov";
    const std::string contents = ReadFile(file);
    const auto time = fs::last_write_time(file);
    for (const std::size_t at : {std::size_t{0}, std::size_t{1} << 20, std::size_t{2500000}, contents.size() - 1}) {
        std::string damaged = contents;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        WriteFile(file, damaged);
        fs::last_write_time(file, time);
        const ProcessResult result = Verify();
        ExpectEnd(result, kVerifyChanged, {Shown("CLIP/clip.mov") + " has changed: its SHA-256 is not the listed one"});
        EXPECT_TRUE(Shows(result.mOutput, "3 files verified")) << result.mOutput;
        EXPECT_TRUE(Shows(result.mOutput, ", 1 changed.")) << result.mOutput;
    }
}

TEST_F(OrlVerify, EachKindOfDifference_HasALineAndTheWorstDecides)
{
    mFolder.MakeFile("disk/CLIP/extra", "x");
    ExpectEnd(Verify(), kVerifyNew, {Shown("CLIP/extra") + " is new: it is not in the list"});
    fs::remove(Disk() / "none");
    ExpectEnd(Verify(), kVerifyMissing,
              {Shown("CLIP/extra") + " is new: it is not in the list", Shown("none") + " is missing"});
    WriteFile(Disk() / "a", "longer than before");
    const ProcessResult result = Verify();
    ExpectEnd(result, kVerifyChanged,
              {Shown("CLIP/extra") + " is new: it is not in the list",
               Shown("a") + " has changed: its SHA-256 is not the listed one", Shown("none") + " is missing"});
    EXPECT_TRUE(Shows(result.mOutput, "2 files verified")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, ", 1 changed, 1 missing, 1 new.")) << result.mOutput;
}

// Files that an OS keeps at the top of a volume are not the user's, so they are not reported as new.
TEST_F(OrlVerify, SystemFolders_AreNotSearchedForNewFiles)
{
    mFolder.MakeFolder("disk/.Trashes/501");
    mFolder.MakeFile("disk/.Trashes/501/old.mov", "deleted");
    mFolder.MakeFolder("disk/System Volume Information");
    mFolder.MakeFile("disk/System Volume Information/index", "an index");
    ExpectEnd(Verify(), 0, {});
    mFolder.MakeFolder("disk/CLIP/.Trashes");
    mFolder.MakeFile("disk/CLIP/.Trashes/old.mov", "deleted");
    ExpectEnd(Verify(), kVerifyNew, {Shown("CLIP/.Trashes/old.mov") + " is new: it is not in the list"});
}

TEST_F(OrlVerify, ASystemFolderWithAListedFile_IsVerifiedLikeAnyOther)
{
    mFolder.MakeFolder("disk/.Trashes");
    mFolder.MakeFile("disk/.Trashes/listed", "listed");
    WriteList();
    const ProcessResult result = Verify();
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "5 files verified")) << result.mOutput;
    mFolder.MakeFile("disk/.Trashes/extra", "new");
    mFolder.MakeFolder("disk/lost+found");
    mFolder.MakeFile("disk/lost+found/extra", "new");
    ExpectEnd(Verify(), kVerifyNew, {Shown(".Trashes/extra") + " is new: it is not in the list"});
}

TEST_F(OrlVerify, AFolderInPlaceOfAFile_IsAChangeAndAFileInPlaceOfAFolderLosesItsFiles)
{
    fs::remove(Disk() / "a");
    mFolder.MakeFolder("disk/a");
    fs::remove_all(Disk() / "CLIP/deep");
    mFolder.MakeFile("disk/CLIP/deep", "x");
    ExpectEnd(Verify(), kVerifyChanged,
              {Shown("CLIP/deep") + " is new: it is not in the list", Shown("CLIP/deep/sector") + " is missing",
               Shown("a") + " has changed: it is a folder"});
}

TEST_F(OrlVerify, Quick_FindsWhatNamesSizesAndTimesTell)
{
    const auto time = fs::last_write_time(Disk() / kManifest);
    for (const char* name : {"a", "none", "CLIP/clip.mov", "CLIP/deep/sector"}) {
        fs::last_write_time(Disk() / name, time - std::chrono::hours(1));
    }
    ProcessResult result = Verify({"--quick"});
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "\": 4 files present, not read.")) << result.mOutput;
    WriteFile(Disk() / "a", "xyz");
    fs::last_write_time(Disk() / "a", time + std::chrono::hours(1));
    WriteFile(Disk() / "none", "now it has contents");
    WriteFile(Disk() / "CLIP/clip.mov", "");
    fs::remove(Disk() / "CLIP/deep/sector");
    mFolder.MakeFile("disk/more", "more");
    result = Verify({"--quick"});
    ExpectEnd(result, kVerifyChanged,
              {Shown("CLIP/clip.mov") + " has changed: it is empty", Shown("CLIP/deep/sector") + " is missing",
               Shown("a") + " has changed: it was written after the list",
               Shown("more") + " is new: it is not in the list", Shown("none") + " has changed: it was empty"});
}

TEST_F(OrlVerify, Quick_ReadsNothing)
{
    const auto time = fs::last_write_time(Disk() / "a") - std::chrono::hours(1);
    for (const char* name : {"a", "none", "CLIP/clip.mov", "CLIP/deep/sector"}) {
        fs::last_write_time(Disk() / name, time);
    }
    WriteFile(Disk() / "a", "xyz");
    fs::last_write_time(Disk() / "a", time);
    ExpectEnd(Verify({"--quick"}), 0, {});
    EXPECT_EQ(kVerifyChanged, Verify().mExitCode);
}

// Tests lists in the forms that other programs write.
TEST_F(OrlVerify, ListsOfOtherPrograms_AreUnderstood)
{
    std::string digest = ReferenceSha256("abc");
    for (char& digit : digest) {
        digit = static_cast<char>(digit >= 'a' ? digit - 0x20 : digit);
    }
    const std::string rest = ReferenceSha256("") + " *./none\n" + ReferenceSha256(std::string(3000001, 'm'))
                             + "  CLIP//clip.mov\n" + ReferenceSha256(std::string(4096, 's'))
                             + "  ./CLIP/./deep/sector\n# a comment\n\n";
    WriteFile(Disk() / kManifest, rest + digest + "  a"); // the list ends without a line break
    const ProcessResult result = Verify();
    ExpectEnd(result, 0, {});
    EXPECT_TRUE(Shows(result.mOutput, "4 files verified")) << result.mOutput;
}

TEST_F(OrlVerify, LinesThatCannotBeChecked_AreNotPassedOver)
{
    const std::string list = ReadFile(Disk() / kManifest);
    WriteFile(Disk() / kManifest, list + "900150983cd24fb0d6963f7d28e17f72  a\nSHA256 (a) = " + ReferenceSha256("abc"));
    ExpectEnd(
        Verify(), 1,
        {"2 lines of the list " + Shown(kManifest) + " were not checked: they are no SHA-256 lines of sha256sum"});
}

TEST_F(OrlVerify, TwoChecksumsOfOneName_AreAChange)
{
    const std::string list = ReadFile(Disk() / kManifest);
    WriteFile(Disk() / kManifest, list + ReferenceSha256("abc") + "  ./a\n");
    ExpectEnd(Verify(), 0, {});
    WriteFile(Disk() / kManifest, list + ReferenceSha256("abd") + "  ./a\n");
    ExpectEnd(Verify(), kVerifyChanged, {Shown("a") + " has changed: the list has two checksums for it"});
}

// Not even a correct checksum makes verify open a file outside the folder.
TEST_F(OrlVerify, NamesThatLeadOut_AreNotOpened)
{
    mFolder.MakeFile("outside", "abc");
    const std::string sum = ReferenceSha256("abc") + "  ";
    for (const std::string& name : {std::string("../outside"), (mFolder.Host() / "outside").generic_u8string(),
                                    std::string("CLIP/../../outside"), std::string("a/"), std::string("a\0b", 3)}) {
        WriteFile(Disk() / kManifest, sum + "a\n" + sum + name + "\n");
        const ProcessResult result = Verify();
        EXPECT_EQ(kVerifyUnreadable, result.mExitCode) << name;
        EXPECT_TRUE(Shows(result.mErrors, "this is no name of a file in the folder")) << result.mErrors;
        EXPECT_TRUE(Shows(result.mOutput, "1 file verified")) << result.mOutput;
    }
}

TEST_F(OrlVerify, HostileLists_AreRefused)
{
    struct Row
    {
        int mLine;
        std::string mList;
        int mExitCode;
        const char* mReason;
    };
    const Row rows[] = {
        {__LINE__, "a diary\n", 1, "is no list of SHA-256 sums"},
        {__LINE__, std::string(300000, 'a'), 1, "is no list of SHA-256 sums"},
        {__LINE__, std::string(300000, '\0'), 1, "is no list of SHA-256 sums"},
        {__LINE__, ReferenceSha256("abc") + "  a\n" + ReferenceSha256("abc").substr(1) + "  a\n", 1,
         "is no list of SHA-256 sums"},
        {__LINE__, "", kVerifyEmpty, "names no file"},
        {__LINE__, "# a comment\n", kVerifyEmpty, "names no file"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        WriteFile(Disk() / kManifest, row.mList);
        const ProcessResult result = Verify();
        EXPECT_EQ(row.mExitCode, result.mExitCode);
        EXPECT_TRUE(Shows(result.mErrors, row.mReason)) << result.mErrors;
        EXPECT_EQ("", result.mOutput);
        EXPECT_EQ(row.mList, ReadFile(Disk() / kManifest));
    }
}

// The list is a sparse file, so that its size needs no disk space.
TEST_F(OrlVerify, AListOfManyGigabytes_IsRefusedUnread)
{
    fs::resize_file(Disk() / kManifest, std::uintmax_t{10} << 30);
    ExpectEnd(Verify(), 1, {Shown(kManifest) + " is too long for a list (10.7 GB) (--manifest names another)"});
}

TEST_F(OrlVerify, WhatCannotBeBegun_IsSaidOnOneLine)
{
    ExpectEnd(RunBesideThisProgram("orl", {"verify", Disk().u8string() + "-missing"}), 1,
              {"\"" + Disk().u8string() + "-missing\" is no folder"});
    ExpectEnd(Verify({"--manifest", "other"}), 1,
              {"there is no list " + Shown("other") + " (--manifest names another)"});
    EXPECT_EQ(2, Verify({"--manifest", "a/b"}).mExitCode);
    EXPECT_EQ(2, Verify({"--files-at-once", "0"}).mExitCode);
    EXPECT_EQ(2, RunBesideThisProgram("orl", {"verify"}).mExitCode);
}

TEST_F(OrlVerify, AFolderThatCannotBeVerified_StopsNoOther)
{
    const ProcessResult result = Verify({Disk().u8string() + "-missing", Disk().u8string()});
    ExpectEnd(result, 1, {"\"" + Disk().u8string() + "-missing\" is no folder"});
    const std::string line = "\"" + Disk().u8string() + "\": 4 files verified";
    const std::size_t first = result.mOutput.find(line);
    EXPECT_NE(std::string::npos, first) << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find(line, first + 1)) << result.mOutput;
}

TEST_F(OrlVerify, Json_HasALineForEachFileAndATotal)
{
    WriteFile(Disk() / "a", "xyz");
    fs::remove(Disk() / "none");
    mFolder.MakeFile("disk/more", "more");
    const ProcessResult result = Verify({"--json"});
    EXPECT_EQ(kVerifyChanged, result.mExitCode);
    std::string folder = "{\"folder\": \"";
    for (const char character : Disk().u8string()) {
        folder += (character == '\\' ? "\\" : "") + std::string(1, character);
    }
    folder += "\", ";
    const std::string clip = ReferenceSha256(std::string(3000001, 'm'));
    const std::string sector = ReferenceSha256(std::string(4096, 's'));
    const std::string lines[] = {
        "\"file\": \"CLIP/clip.mov\", \"state\": \"verified\", \"bytes\": 3000001, \"listed\": \"" + clip
            + "\", \"sha256\": \"" + clip + "\"}\n",
        "\"file\": \"CLIP/deep/sector\", \"state\": \"verified\", \"bytes\": 4096, \"listed\": \"" + sector
            + "\", \"sha256\": \"" + sector + "\"}\n",
        "\"file\": \"a\", \"state\": \"changed\", \"bytes\": 3, \"listed\": \"" + ReferenceSha256("abc")
            + "\", \"sha256\": \"" + ReferenceSha256("xyz")
            + "\", \"reason\": \"its SHA-256 is not the listed one\"}\n",
        "\"file\": \"more\", \"state\": \"new\", \"bytes\": 4}\n",
        "\"file\": \"none\", \"state\": \"missing\", \"bytes\": 0, \"listed\": \"" + ReferenceSha256("") + "\"}\n",
        "\"summary\": true, \"verified\": 2, \"present\": 0, \"changed\": 1, \"missing\": 1, \"unreadable\": 0, "
        "\"new\": 1, \"notChecked\": 0, \"bytesRead\": 3004100, \"milliseconds\": ",
    };
    std::string expected;
    for (const std::string& line : lines) {
        expected += folder + line;
    }
    EXPECT_EQ(expected, result.mOutput.substr(0, expected.size()));
    EXPECT_TRUE(Shows(result.mOutput.substr(expected.size()), ", \"isStopped\": false, \"errors\": []}\n"));
}
