// Sends Ctrl-C to an ingest before system calls at regular intervals of the run.
#include "IngestTestSupport.h"
#include <ProcessRunner.h>
#include <TracedRunLinux.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

constexpr int kPoints = 16;
constexpr int kStopped = 130;
constexpr char kLine[] = "orl: ingest: stopped by the user; files in place are complete and are kept\n";
constexpr char kLineOfPlanning[] = "orl: ingest: stopped by the user; nothing was begun\n";

/// Files of two blocks each, so that a run can be interrupted within a file and between two files.
class InterruptedIngest : public testing::TestWithParam<const char*>
{
protected:
    InterruptedIngest() : mFolder(::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path())
    {
        mFolder.MakeFolder("card/d");
        for (const char* name : {"card/a", "card/b", "card/d/c"}) {
            mFolder.MakeFile(name, std::string(1100000, name[6]));
        }
        mCard = ReadTree(mFolder.Host() / "card");
    }

    fs::path Disk() const { return mFolder.Host() / "disk"; }
    std::string Errors() const { return (mFolder.Host() / "errors").string(); }

    std::vector<std::string> Arguments() const
    {
        return {"ingest", "--files-at-once", GetParam(), (mFolder.Host() / "card").string(), Disk().string()};
    }

    int RunTraced(TracedRun& ioRun, int inSignalAt, int inSignal = SIGINT) const
    {
        fs::remove_all(Disk());
        std::vector<std::string> arguments = Arguments();
        arguments.insert(arguments.begin(), FolderOfThisProgram() + "orl");
        return ioRun.Run(arguments, inSignalAt, inSignal);
    }

    /// Expects that every file is complete and has its final name and its line in the manifest.
    void ExpectCleanStop() const
    {
        const std::string told = ReadFile(Errors());
        const bool wasPlanning = told == kLineOfPlanning;
        EXPECT_TRUE(wasPlanning || told == kLine) << told;
        if (!fs::exists(Disk())) {
            return;
        }
        FileTree disk = ReadTree(Disk());
        EXPECT_TRUE(!wasPlanning || disk.empty()) << disk.begin()->first;
        const auto manifest =
            fs::exists(Disk() / kManifest) ? ReadManifest(Disk() / kManifest) : std::map<std::string, std::string>();
        disk.erase(kManifest);
        for (const auto& [name, contents] : disk) {
            ASSERT_EQ(1u, mCard.count(name)) << name;
            EXPECT_EQ(mCard.at(name), contents) << name;
            EXPECT_EQ(contents == "/" ? 0u : 1u, manifest.count(name)) << name;
        }
        for (const auto& line : manifest) {
            EXPECT_EQ(1u, disk.count(line.first)) << line.first;
        }
    }

    TempFolder mFolder;
    FileTree mCard;
};

std::string NameOfCount(const testing::TestParamInfo<const char*>& inInfo)
{
    return inInfo.param + std::string("AtOnce");
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Files, InterruptedIngest, testing::Values("1", "4"), NameOfCount);

TEST_P(InterruptedIngest, AtAnyCall_LeavesNothingHalfAndASecondRunCompletes)
{
    TracedRun traced(Disk().string(), Errors());
    const int calls = RunTraced(traced, 0);
    if (calls < 0 || traced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    ASSERT_EQ(0, traced.ExitCode()) << ReadFile(Errors());
    ASSERT_LT(kPoints, calls);
    int stops = 0;
    for (int point = 0; point < kPoints && !HasFailure(); ++point) {
        const int number = 1 + point * calls / kPoints;
        SCOPED_TRACE("interrupted before call " + std::to_string(number) + " of about " + std::to_string(calls));
        RunTraced(traced, number);
        // When all files are in place, a stop has no effect.
        if (traced.ExitCode() == kStopped) {
            ++stops;
            ExpectCleanStop();
        } else {
            EXPECT_EQ(0, traced.ExitCode()) << ReadFile(Errors());
            ExpectIngested(mCard, Disk());
        }
        const ProcessResult again = RunBesideThisProgram("orl", Arguments());
        EXPECT_EQ(0, again.mExitCode) << again.mErrors;
        ExpectIngested(mCard, Disk());
    }
    EXPECT_LE(kPoints / 2, stops);
}

TEST_P(InterruptedIngest, BehindATrouble_TellsBoth)
{
    ASSERT_EQ(0, ::mkfifo((mFolder.Host() / "card/pipe").c_str(), 0600));
    TracedRun traced(Disk().string(), Errors());
    const int calls = RunTraced(traced, 0);
    if (calls < 0 || traced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    const std::string trouble = "orl: ingest: cannot read \"pipe\": it is not a regular file\n";
    ASSERT_EQ(4, traced.ExitCode()) << ReadFile(Errors());
    ASSERT_EQ(trouble, ReadFile(Errors()));
    for (int call = calls / 2; call > 0 && traced.ExitCode() != kStopped; call -= calls / 8) {
        RunTraced(traced, call);
    }
    EXPECT_EQ(kStopped, traced.ExitCode());
    EXPECT_EQ(trouble + kLine, ReadFile(Errors()));
}

TEST_P(InterruptedIngest, ByAHangUpOrAnEnd_StopsAsCleanly)
{
    TracedRun traced(Disk().string(), Errors());
    const int calls = RunTraced(traced, 0);
    if (calls < 0 || traced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    for (const int signal : {SIGHUP, SIGTERM}) {
        int stops = 0;
        for (const int number : {calls / 4, calls / 2, calls * 3 / 4}) {
            SCOPED_TRACE("signal " + std::to_string(signal) + " before call " + std::to_string(number));
            RunTraced(traced, number, signal);
            if (traced.ExitCode() == kStopped) {
                ++stops;
                ExpectCleanStop();
            } else {
                EXPECT_EQ(0, traced.ExitCode()) << ReadFile(Errors());
            }
        }
        EXPECT_LE(1, stops) << "signal " << signal;
        const ProcessResult again = RunBesideThisProgram("orl", Arguments());
        EXPECT_EQ(0, again.mExitCode) << again.mErrors;
        ExpectIngested(mCard, Disk());
    }
}

// Starts orl with SIGHUP ignored, as nohup does.
TEST_P(InterruptedIngest, WhoseHangUpIsIgnored_GoesOn)
{
    std::string command = "trap '' HUP; exec '" + FolderOfThisProgram() + "orl'";
    for (const std::string& argument : Arguments()) {
        command += " '" + argument + "'";
    }
    TracedRun traced(Disk().string(), Errors());
    const std::vector<std::string> shell{"/bin/sh", "-c", command};
    const int calls = traced.Run(shell, 0, SIGHUP);
    if (calls < 0 || traced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    fs::remove_all(Disk());
    traced.Run(shell, calls / 2, SIGHUP);
    EXPECT_EQ(0, traced.ExitCode()) << ReadFile(Errors());
    ExpectIngested(mCard, Disk());
}
