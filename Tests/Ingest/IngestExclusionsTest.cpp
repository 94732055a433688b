// Tests the patterns of --exclude, and that an excluded entry is always reported.
#include "IngestTestSupport.h"

#include <Failure.h>
#include <IngestExclusions.h>
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::IngestExclusions;

namespace {

namespace fs = std::filesystem;

bool Shows(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

std::string LastLine(const ProcessResult& inResult)
{
    const std::string text = inResult.mOutput.substr(0, inResult.mOutput.find_last_not_of("\r\n") + 1);
    return text.substr(text.find_last_of('\n') + 1);
}

class OrlIngestExclude : public testing::Test
{
protected:
    OrlIngestExclude()
    {
        mFolder.MakeFolder("card/CLIP/CACHE/deep");
        mFolder.MakeFolder("card/.Trashes/501");
        mFolder.MakeFile("card/a.mov", "a movie");
        mFolder.MakeFile("card/a.xml", "a list");
        mFolder.MakeFile("card/CLIP/b.xml", "another list");
        mFolder.MakeFile("card/CLIP/C.XML", "its name is in upper case");
        mFolder.MakeFile("card/CLIP/CACHE/deep/frame", "a frame");
        mFolder.MakeFile("card/.Trashes/501/old.mov", "deleted");
    }

    fs::path Card() const { return mFolder.Host() / "card"; }
    fs::path Disk() const { return mFolder.Host() / "disk"; }

    ProcessResult Ingest(std::vector<std::string> inOptions) const
    {
        inOptions.insert(inOptions.begin(), {"ingest", Card().u8string(), Disk().u8string()});
        return RunBesideThisProgram("orl", inOptions);
    }

    /// Returns the files at the destination that an ingest acknowledged.
    std::string Acknowledged() const
    {
        std::string names;
        for (const auto& [name, digest] : ReadManifest(Disk() / kManifest)) {
            names += (names.empty() ? "" : " ") + name;
            EXPECT_EQ(digest, ReferenceSha256(ReadFile(Disk() / name)));
        }
        return names;
    }

    TempFolder mFolder;
};

} // namespace

TEST(IngestExclusions, Patterns_MatchByOneRule)
{
    struct Row
    {
        int mLine;
        const char* mName;
        const char* mPattern;
        bool mMatches;
    };
    const Row rows[] = {
        {__LINE__, "a", "a", true},
        {__LINE__, "a", "A", false},
        {__LINE__, "CLIP/a", "a", true},
        {__LINE__, "CLIP/a", "CLIP", false},
        {__LINE__, "CLIP/a", "CLIP/a", true},
        {__LINE__, "CLIP/a", "/a", false},
        {__LINE__, "a", "/a", true},
        {__LINE__, "x/CLIP/a", "CLIP/a", false},
        {__LINE__, "a.xml", "*.xml", true},
        {__LINE__, ".xml", "*.xml", true},
        {__LINE__, "a.xmls", "*.xml", false},
        {__LINE__, "a.xml", "*.XML", false},
        {__LINE__, "CLIP/a.xml", "*/*.xml", true},
        {__LINE__, "CLIP/deep/a.xml", "*/*.xml", false},
        {__LINE__, "CLIP/a", "*", true},
        {__LINE__, "CLIP/a", "C*a", false},
        {__LINE__, "", "*", true},
        {__LINE__, "ab", "?", false},
        {__LINE__, "ab", "??", true},
        {__LINE__, "\xc3\xa9", "?", true},
        {__LINE__, "\xe2\x82\xac", "*??", false},
        {__LINE__, "\xf0\x9f\x8e\xac.mov", "?.mov", true},
        {__LINE__, "\xff\xfe", "??", true},
        {__LINE__, "\xc3", "?", true},
        {__LINE__, "[a]", "[a]", true},
        {__LINE__, "a", "[a]", false},
        {__LINE__, "abcabd", "*ab?", true},
        {__LINE__, "aab", "*a*b", true},
        {__LINE__, "ab", "a**b", true},
        {__LINE__, "ab", "ab*", true},
        {__LINE__, "a/b", "a?b", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mMatches, orl::MatchesPattern(row.mName, row.mPattern)) << "row at line " << row.mLine;
    }
}

// A pattern with many stars must not take exponential time.
TEST(IngestExclusions, ManyStars_EndSoon)
{
    std::string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += "*a";
    }
    EXPECT_FALSE(orl::MatchesPattern(std::string(4000, 'a'), pattern + "b"));
    EXPECT_TRUE(orl::MatchesPattern(std::string(4000, 'a'), pattern));
}

TEST(IngestExclusions, SystemFolders_MatchAtTheTopInAnyCase)
{
    IngestExclusions exclusions;
    std::string pattern;
    EXPECT_EQ(IngestExclusions::Match::kNone, exclusions.Find("lost+found", pattern));
    exclusions.AddSystemFolders();
    for (const char* name :
         {"lost+found", ".Trashes", ".Trash-1000", ".Spotlight-V100", ".fseventsd", "System Volume Information",
          "$RECYCLE.BIN", "$Recycle.Bin", "SYSTEM VOLUME INFORMATION"}) {
        EXPECT_EQ(IngestExclusions::Match::kSystemFolder, exclusions.Find(name, pattern)) << name;
        EXPECT_EQ(IngestExclusions::Match::kNone, exclusions.Find("CLIP/" + std::string(name), pattern)) << name;
    }
    for (const char* name : {"found", "lost+found2", "CLIP", ".Trash1"}) {
        EXPECT_EQ(IngestExclusions::Match::kNone, exclusions.Find(name, pattern)) << name;
    }
    exclusions.Keep("LOST+found");
    EXPECT_EQ(IngestExclusions::Match::kNone, exclusions.Find("Lost+Found", pattern));
    EXPECT_EQ(IngestExclusions::Match::kSystemFolder, exclusions.Find(".fseventsd", pattern));
    exclusions.Add(".Tr*");
    EXPECT_EQ(IngestExclusions::Match::kPattern, exclusions.Find(".Trashes", pattern));
    EXPECT_EQ(".Tr*", pattern);
}

TEST(IngestExclusions, PatternsThatMatchNoName_AreRefused)
{
    for (const char* pattern : {"", "/", "a/", "//a", "a//b", ".", "..", "./a", "a/../b"}) {
        IngestExclusions exclusions;
        EXPECT_THROW(exclusions.Add(pattern), orl::Failure) << pattern;
        EXPECT_TRUE(exclusions.Patterns().empty());
    }
}

TEST_F(OrlIngestExclude, SystemFolders_AreLeftOutAndReported)
{
    const ProcessResult result = Ingest({});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("CLIP/C.XML CLIP/CACHE/deep/frame CLIP/b.xml a.mov a.xml", Acknowledged());
    EXPECT_FALSE(fs::exists(Disk() / ".Trashes"));
    EXPECT_TRUE(Shows(result.mOutput, "System folders that are not copied: \".Trashes\" (--no-default-excludes copies "
                                      "them).\n"))
        << result.mOutput;
    EXPECT_EQ("Safe to erase the source: all of its files (5) are verified at 1 destination; folders of the system "
              "(\".Trashes\") are not copied.",
              LastLine(result));
}

TEST_F(OrlIngestExclude, WithoutTheDefaults_EverythingIsCopied)
{
    const ProcessResult result = Ingest({"--no-default-excludes"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(ReadFile(Card() / ".Trashes/501/old.mov"), ReadFile(Disk() / ".Trashes/501/old.mov"));
    EXPECT_FALSE(Shows(result.mOutput, "not copied")) << result.mOutput;
    EXPECT_EQ("Safe to erase the source: all of its files (6) are verified at 1 destination.", LastLine(result));
}

TEST_F(OrlIngestExclude, AFileNamedLikeASystemFolder_IsCopied)
{
    mFolder.MakeFile("card/lost+found", "a file");
    EXPECT_EQ(0, Ingest({}).mExitCode);
    EXPECT_EQ("a file", ReadFile(Disk() / "lost+found"));
}

// The last line, about erasing the source, reports the entries without a copy.
TEST_F(OrlIngestExclude, EntriesOfPatterns_AreLeftOutAndMakeErasingUnsafe)
{
    const ProcessResult result = Ingest({"--exclude", "*.xml", "--exclude", "CLIP/CACHE", "--exclude", "*.tmp"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("CLIP/C.XML a.mov", Acknowledged());
    EXPECT_FALSE(fs::exists(Disk() / "CLIP/CACHE"));
    EXPECT_TRUE(Shows(result.mOutput, "Excluded by \"*.xml\": 2 entries: \"CLIP/b.xml\", \"a.xml\".\n"
                                      "Excluded by \"CLIP/CACHE\": 1 entry: \"CLIP/CACHE\".\n"
                                      "Excluded by \"*.tmp\": 0 entries.\n"))
        << result.mOutput;
    EXPECT_EQ("Not safe to erase the source: 3 entries (the first is \"CLIP/CACHE\") are excluded by --exclude and not "
              "copied; all other files (2) are verified at 1 destination.",
              LastLine(result));
}

// Excluding a file that an earlier run acknowledged deletes neither its copy nor its manifest line.
TEST_F(OrlIngestExclude, ALaterExclusion_RemovesNothing)
{
    ASSERT_EQ(0, Ingest({}).mExitCode);
    const FileTree before = ReadTree(Disk());
    EXPECT_EQ(0, Ingest({"--exclude", "*.xml"}).mExitCode);
    EXPECT_EQ(before, ReadTree(Disk()));
}

TEST_F(OrlIngestExclude, APatternThatExcludesEverything_EndsLikeAnEmptySource)
{
    const ProcessResult result = Ingest({"--exclude", "*"});
    EXPECT_EQ(9, result.mExitCode);
    EXPECT_TRUE(Shows(result.mErrors, "contains no files that are not excluded")) << result.mErrors;
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(OrlIngestExclude, ACardOfSystemFoldersAlone_EndsLikeAnEmptySource)
{
    fs::create_directories(mFolder.Host() / "mount point/lost+found");
    const ProcessResult result =
        RunBesideThisProgram("orl", {"ingest", (mFolder.Host() / "mount point").u8string(), Disk().u8string()});
    EXPECT_EQ(9, result.mExitCode);
    EXPECT_TRUE(Shows(result.mErrors, "contains no files (is the card mounted?)")) << result.mErrors;
}

// Not even an excluded folder of the source may be written to.
TEST_F(OrlIngestExclude, ADestinationInAnExcludedFolder_IsRefused)
{
    for (const char* folder : {"card/.Trashes/disk", "card/CLIP/disk"}) {
        const ProcessResult result = RunBesideThisProgram(
            "orl", {"ingest", Card().u8string(), (mFolder.Host() / folder).u8string(), "--exclude", "CLIP"});
        EXPECT_EQ(1, result.mExitCode) << folder;
        EXPECT_TRUE(Shows(result.mErrors, "lies inside the source")) << result.mErrors;
        EXPECT_FALSE(fs::exists(mFolder.Host() / folder));
    }
}

TEST_F(OrlIngestExclude, APatternThatMatchesNoName_IsRefused)
{
    const ProcessResult result = Ingest({"--exclude", "CLIP/"});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_TRUE(Shows(result.mErrors, "--exclude \"CLIP/\" matches no name")) << result.mErrors;
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(OrlIngestExclude, TheDryRun_ShowsWhatIsLeftOut)
{
    const ProcessResult result = Ingest({"--dry-run", "--exclude", "*.xml"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_TRUE(Shows(result.mOutput, "Excluded by \"*.xml\": 2 entries")) << result.mOutput;
    EXPECT_TRUE(Shows(result.mOutput, "3 files to copy")) << result.mOutput;
}

TEST_F(OrlIngestExclude, Json_HasFilesExcludedEntriesAndTheVerdict)
{
    const ProcessResult result = Ingest({"--json", "--exclude", "CLIP", "--exclude", "*.xml"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    std::string disk;
    for (const char character : Disk().u8string()) {
        disk += (character == '\\' ? "\\" : "") + std::string(1, character);
    }
    EXPECT_EQ("{\"destination\": \"" + disk
                  + "\", \"file\": \"a.mov\", \"state\": \"copied\", \"bytes\": 7, \"sha256\": \""
                  + ReferenceSha256("a movie")
                  + "\"}\n"
                    "{\"excluded\": \".Trashes\", \"isSystemFolder\": true}\n"
                    "{\"excluded\": \"CLIP\", \"pattern\": \"CLIP\"}\n"
                    "{\"excluded\": \"a.xml\", \"pattern\": \"*.xml\"}\n"
                    "{\"summary\": true, \"files\": 1, \"excludedByPattern\": 2, \"excludedSystemFolders\": 1, "
                    "\"isSafeToErase\": false, \"verdict\": \"Not safe to erase the source: 2 entries (the first is "
                    "\\\"CLIP\\\") are excluded by --exclude and not copied; all other files (1) are verified at 1 "
                    "destination.\", \"errors\": []}\n",
              result.mOutput);
    WriteFile(Disk() / "a.mov", "another file");
    const ProcessResult conflict = Ingest({"--json"});
    EXPECT_EQ(8, conflict.mExitCode);
    EXPECT_TRUE(Shows(conflict.mOutput, "\"isSafeToErase\": false")) << conflict.mOutput;
    EXPECT_TRUE(Shows(conflict.mOutput, "\"errors\": [\"ingest: cannot copy \\\"a.mov\\\"")) << conflict.mOutput;
}

TEST_F(OrlIngestExclude, Help_ListsTheDefaults)
{
    const ProcessResult result = RunBesideThisProgram("orl", {"ingest", "--help"});
    EXPECT_EQ(0, result.mExitCode);
    for (const char* text : {"--exclude PATTERN", "--no-default-excludes", "lost+found", "$recycle.bin"}) {
        EXPECT_TRUE(Shows(result.mOutput, text)) << text;
    }
}
