// Runs the five small hosts as a user does, and checks that each has fewer than 60 lines.
#include <OwnUserStore.h>
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

ProcessResult Start(const std::string& inHost, const std::vector<std::string>& inArguments)
{
    return RunBesideThisProgram("example_" + inHost, inArguments);
}

std::string Said(const std::string& inHost, const std::vector<std::string>& inArguments)
{
    const ProcessResult result = Start(inHost, inArguments);
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    return result.mOutput;
}

void ForgetStarts()
{
    ORL::RegistryKey key;
    key.Create(ORL::RegistryRootKeys::kUser, ORL::MakeString("Software\\Zerin"));
    key.DeleteSubKey(ORL::MakeString("FirstSteps"));
}

} // namespace

TEST(FirstSteps, ListClips_NamesTheFilesWithTheEndingInOrder)
{
    const TempFolder folder;
    std::filesystem::create_directory(folder.Host() / "reel");
    folder.MakeFile("b.mov");
    folder.MakeFile("a.mov");
    folder.MakeFile("notes.txt");
    std::ofstream(folder.Host() / "reel" / "c.mov") << "x";
    EXPECT_EQ("a.mov\nb.mov\nreel\\c.mov\n3 clips\n", Said("list_clips", {folder.Host().u8string(), ".mov"}));
}

TEST(FirstSteps, ListClips_FolderWithATrailingSeparator_NamesWholeFiles)
{
    const TempFolder folder;
    folder.MakeFile("a.mov");
    const std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
    EXPECT_EQ("a.mov\n1 clips\n", Said("list_clips", {folder.Host().u8string() + separator, ".mov"}));
}

TEST(FirstSteps, ListClips_OfAFile_SaysThatItIsNoFolder)
{
    const TempFolder folder;
    folder.MakeFile("a.mov");
    const std::string file = (folder.Host() / "a.mov").u8string();
    const ProcessResult result = Start("list_clips", {file, ".mov"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("is not a folder")) << result.mErrors;
}

TEST(FirstSteps, ReadFile_CountsTheLinesOfAFileOfManyBlocks)
{
    const TempFolder folder;
    std::string text(9 * (1 << 20) + 17, 'x'); // ten reads: more than are in flight at once
    for (std::size_t at = 0; at < text.size(); at += 1000) {
        text[at] = '\n';
    }
    folder.MakeFile("long.txt", text);
    const auto lines = std::count(text.begin(), text.end(), '\n');
    EXPECT_EQ(std::to_string(lines) + " lines\n", Said("read_file", {(folder.Host() / "long.txt").u8string()}));
}

TEST(FirstSteps, ReadFile_OfAMissingFile_Fails)
{
    const TempFolder folder;
    EXPECT_EQ(1, Start("read_file", {(folder.Host() / "missing.txt").u8string()}).mExitCode);
}

TEST(FirstSteps, Timecodes_SkipTwoLabelsAtTheMinute)
{
    EXPECT_EQ(
        "00;00;59;29  drop-frame, the frame before\n00;01;00;02  drop-frame\n00:01:00:00  non-drop\n1800  frames\n",
        Said("timecodes", {"1800"}));
}

TEST(FirstSteps, WorkQueue_RunsEveryRequest)
{
    EXPECT_EQ("1 + 2 + ... + 1000 = 500500\n", Said("work_queue", {}));
}

// A single test, because on Windows two concurrent tests would share the settings.
TEST(FirstSteps, Settings_CountTheStarts)
{
    const OwnUserStore store;
    ForgetStarts();
    EXPECT_EQ("start 1\n", Said("settings", {}));
    EXPECT_EQ("start 2\n", Said("settings", {}));
    ForgetStarts();
}

TEST(FirstSteps, EachHostHasFewerThanSixtyLines)
{
    int hosts = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_EXAMPLES "/FirstSteps")) {
        if (entry.path().extension() == ".cpp") {
            std::ifstream file(entry.path());
            const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
            EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 60) << entry.path();
            ++hosts;
        }
    }
    EXPECT_EQ(5, hosts);
}
