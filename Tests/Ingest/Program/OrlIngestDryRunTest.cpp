// Tests that orl ingest --dry-run shows what a run would do, and changes nothing.
#include "IngestTestSupport.h"
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

bool Shows(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

/// Contents and last-write times of everything in a folder, including the times of folders.
std::map<std::string, std::pair<std::string, fs::file_time_type>> Snapshot(const fs::path& inFolder)
{
    std::map<std::string, std::pair<std::string, fs::file_time_type>> all;
    for (const auto& [name, contents] : ReadTree(inFolder)) {
        all[name] = {contents, fs::last_write_time(inFolder / name)};
    }
    all["."] = {"/", fs::last_write_time(inFolder)};
    return all;
}

class OrlIngestDryRun : public testing::Test
{
protected:
    OrlIngestDryRun()
    {
        mFolder.MakeFolder("all/card/CLIP");
        mFolder.MakeFile("all/card/a", "A");
        mFolder.MakeFile("all/card/CLIP/clip", std::string(3000000, 'c'));
        mFolder.MakeFile("all/card/none", "");
    }

    fs::path All() const { return mFolder.Host() / "all"; }
    fs::path Disk() const { return All() / "disk"; }

    ProcessResult Ingest(std::vector<std::string> inOptions) const
    {
        inOptions.insert(inOptions.begin(), {"ingest", (All() / "card").u8string(), Disk().u8string()});
        return RunBesideThisProgram("orl", inOptions);
    }

    /// Runs with --dry-run, expects that nothing changes, and returns the output.
    std::string DryRun(int inExitCode, std::vector<std::string> inOptions = {}) const
    {
        const auto before = Snapshot(All());
        inOptions.push_back("--dry-run");
        const ProcessResult result = Ingest(inOptions);
        EXPECT_EQ(inExitCode, result.mExitCode) << result.mErrors;
        EXPECT_EQ(inExitCode == 0, result.mErrors.empty()) << result.mErrors;
        EXPECT_EQ(before, Snapshot(All()));
        EXPECT_TRUE(Shows(result.mOutput, "Nothing was copied (--dry-run).\n")) << result.mOutput;
        return result.mOutput;
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlIngestDryRun, OfANewDestination_ShowsAllAndCreatesNothing)
{
    const std::string output = DryRun(0, {(All() / "other").u8string()});
    EXPECT_TRUE(Shows(output, "disk\": 3 files to copy, 3.0 MB, 1 folder to create.\n")) << output;
    EXPECT_TRUE(Shows(output, "other\": 3 files to copy, 3.0 MB, 1 folder to create.\n")) << output;
    EXPECT_TRUE(Shows(output, " free, 3.0 MB needed.\n")) << output;
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(OrlIngestDryRun, OfACompleteDestination_ShowsWhatIsThere)
{
    ASSERT_EQ(0, Ingest({}).mExitCode);
    EXPECT_TRUE(Shows(DryRun(0), "0 files to copy, 0 B, 3 verified before.\n"));
    fs::remove(Disk() / kManifest);
    EXPECT_TRUE(Shows(DryRun(0), "0 files to copy, 0 B, 3 present, to be compared.\n"));
    fs::remove(Disk() / "a");
    EXPECT_TRUE(Shows(DryRun(0), "1 file to copy, 1 B, 2 present, to be compared.\n"));
}

TEST_F(OrlIngestDryRun, OfANameThatIsTaken_EndsLikeTheRun)
{
    mFolder.MakeFolder("all/disk");
    mFolder.MakeFile("all/disk/a", "another file");
    EXPECT_TRUE(Shows(DryRun(8), "2 files to copy"));
    EXPECT_TRUE(Shows(DryRun(0, {"--replace"}), "3 files to copy, 3.0 MB (1 replace another file)"));
}

TEST_F(OrlIngestDryRun, AfterAKilledRun_LeavesTheRemains)
{
    ASSERT_EQ(0, Ingest({}).mExitCode);
    const std::string list = ReadFile(Disk() / kManifest);
    WriteFile(Disk() / kManifest, list + "0123456789abcdef torn");
    mFolder.MakeFile("all/disk/" + std::string(kUnfinished), std::string(100000, 'u'));
    mFolder.MakeFile("all/disk/" + std::string(kRecord),
                     RecordOf("T " + std::string(kUnfinished) + "\nM " + std::to_string(list.size()) + "\n"));
    const std::string output = DryRun(0);
    EXPECT_TRUE(Shows(output, "3 verified before")) << output;
    EXPECT_TRUE(Shows(output, " of unfinished files are deleted first.\n")) << output;
}

TEST_F(OrlIngestDryRun, OfADestinationThatIsRefused_SaysSo)
{
    mFolder.MakeFolder("all/disk");
    mFolder.MakeFile("all/disk/ingest.sha256", "a diary\n");
    EXPECT_TRUE(Shows(DryRun(1), "disk\": refused.\n"));
    EXPECT_TRUE(Shows(DryRun(1, {(All() / "other").u8string()}), "other\": 3 files to copy"));
}

TEST_F(OrlIngestDryRun, AsJson_HasALineForEachFileAndDestinationAndChangesNothing)
{
    mFolder.MakeFolder("all/disk");
    mFolder.MakeFile("all/disk/a", "another file");
    mFolder.MakeFile("all/disk/none", "");
    mFolder.MakeFile("all/card/skipped", "s");
    const auto before = Snapshot(All());
    const ProcessResult result = Ingest({"--dry-run", "--json", "--replace", "--exclude", "skipped"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(before, Snapshot(All()));
    std::string disk;
    for (const char character : Disk().u8string()) {
        disk += (character == '\\' ? "\\" : "") + std::string(1, character);
    }
    const std::string start = "{\"destination\": \"" + disk + "\", ";
    EXPECT_TRUE(Shows(result.mOutput, start + "\"file\": \"a\", \"work\": \"replace\", \"bytes\": 1}\n"));
    EXPECT_TRUE(Shows(result.mOutput, start + "\"file\": \"none\", \"work\": \"compare\", \"bytes\": 0}\n"));
    EXPECT_TRUE(
        Shows(result.mOutput, start + "\"isRefused\": false, \"foldersToCreate\": 1, \"volumes\": [{\"folder\": "));
    EXPECT_TRUE(Shows(result.mOutput, "{\"excluded\": \"skipped\", \"pattern\": \"skipped\"}\n"));
    EXPECT_TRUE(Shows(result.mOutput, "{\"summary\": true, \"isDryRun\": true, \"errors\": []}\n")) << result.mOutput;
}

TEST_F(OrlIngestDryRun, AsJson_OfARefusedDestination_HasTheError)
{
    mFolder.MakeFolder("all/disk");
    mFolder.MakeFile("all/disk/ingest.sha256", "a diary\n");
    const ProcessResult result = Ingest({"--dry-run", "--json"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_TRUE(Shows(result.mOutput, "\"isRefused\": true, \"foldersToCreate\": 0, \"volumes\": []}\n"));
    EXPECT_TRUE(Shows(result.mOutput, "\"isDryRun\": true, \"errors\": [\"ingest: ")) << result.mOutput;
}
