// Runs the job script of Docs/farm.md with a loop in place of a scheduler.
#include "../Tools/VerifyTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class VerifyFarmOnLinux : public VerifiedTree
{
protected:
    fs::path Results() const { return mFolder.Host() / "the results"; }
    std::string ResultOf(int inNumber) const
    {
        return (Results() / ("part-" + std::to_string(inNumber) + ".json")).string();
    }

    /// Returns the exit code of one job. inBefore is shell code that precedes the command.
    int RunJob(int inNumber, int inCount, const std::string& inBefore = std::string()) const
    {
        const std::string variables = "SLURM_ARRAY_TASK_ID=" + std::to_string(inNumber) + " SLURM_ARRAY_TASK_MIN=1"
                                      + " SLURM_ARRAY_TASK_COUNT=" + std::to_string(inCount) + " ORL='"
                                      + FolderOfThisProgram() + "orl' ";
        const std::string command = inBefore + variables + ORL_FARM_SCRIPT + " '" + Disk().string() + "' '"
                                    + Results().string() + "' 2>/dev/null";
        return WEXITSTATUS(std::system(command.c_str()));
    }

    ProcessResult Merge(int inCount) const
    {
        std::vector<std::string> arguments{"verify", "--merge"};
        for (int number = 1; number <= inCount; ++number) {
            arguments.push_back(ResultOf(number));
        }
        return RunBesideThisProgram("orl", arguments);
    }

    std::size_t FilesInResults() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(Results()), fs::directory_iterator()));
    }

    static std::string WithoutTime(const std::string& inJson)
    {
        const std::size_t begin = inJson.find("\"milliseconds\"");
        return inJson.substr(0, begin) + inJson.substr(inJson.find(',', begin));
    }
};

} // namespace

TEST_F(VerifyFarmOnLinux, TheScript_VerifiesAFolder)
{
    for (int number = 3; number >= 1; --number) { // descending, because any order must work
        EXPECT_EQ(0, RunJob(number, 3));
    }
    EXPECT_EQ(3u, FilesInResults());
    ExpectEnd(Merge(3), 0, {});
    WriteFile(Disk() / "a", "xyz");
    for (int number = 1; number <= 3; ++number) {
        EXPECT_EQ(0, RunJob(number, 3)) << "a finding is no failure of the job";
    }
    ExpectEnd(Merge(3), kVerifyChanged, {Shown("a") + " has changed: its SHA-256 is not the listed one"});
}

// The limit makes the system kill the program while it writes its result.
TEST_F(VerifyFarmOnLinux, AJobThatIsKilledAndRunAgain_GivesTheSameResult)
{
    for (int i = 0; i < 40; ++i) {
        mFolder.MakeFile("disk/CLIP/" + std::to_string(i), std::to_string(i));
    }
    WriteList();
    ASSERT_EQ(0, RunJob(1, 2));
    ASSERT_EQ(0, RunJob(2, 2));
    const std::string whole = ReadFile(ResultOf(2));
    ASSERT_LT(4096u, whole.size());
    EXPECT_NE(0, RunJob(2, 2, "ulimit -c 0; ulimit -f 1; "));
    EXPECT_FALSE(fs::exists(ResultOf(2)));
    EXPECT_EQ(1u, FilesInResults());
    EXPECT_EQ(1, Merge(2).mExitCode);
    ASSERT_EQ(0, RunJob(2, 2));
    EXPECT_EQ(WithoutTime(whole), WithoutTime(ReadFile(ResultOf(2))));
    ExpectEnd(Merge(2), 0, {});
}

TEST_F(VerifyFarmOnLinux, AnArrayWithGaps_IsRefused)
{
    EXPECT_EQ(2, RunJob(4, 3));
    EXPECT_FALSE(fs::exists(Results()));
}

TEST_F(VerifyFarmOnLinux, AFolderThatIsGone_FailsTheJobAndTheMerge)
{
    ASSERT_EQ(0, RunJob(1, 2));
    fs::rename(Disk(), mFolder.Host() / "away");
    EXPECT_EQ(1, RunJob(2, 2));
    EXPECT_FALSE(fs::exists(ResultOf(2)));
    EXPECT_EQ(1, Merge(2).mExitCode);
}
