// Kills an ingest at every system call. The program is traced from outside and contains no test code.
#include "IngestTestSupport.h"
#include <ProcessRunner.h>
#include <TracedRunLinux.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

fs::path FastFolder()
{
    return ::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path();
}

/// A disk with two clips from an earlier ingest; a card with a new clip, and with a newer version of one of the two.
class CrashedIngest : public testing::TestWithParam<std::tuple<const char*, int>>
{
protected:
    CrashedIngest() : mFolder(FastFolder())
    {
        mFolder.MakeFolder("card/d");
        mFolder.MakeFile("card/new.wav", MakeWav(8000, 2000));
        mFolder.MakeFile("card/d/clip", std::get<0>(GetParam()));
        mCard = ReadTree(mFolder.Host() / "card");
    }

    fs::path Disk() const { return mFolder.Host() / "disk"; }

    void RestoreInitialState() const
    {
        fs::remove_all(Disk());
        mFolder.MakeFolder("disk/d");
        WriteFile(Disk() / "d/clip", kOld);
        // Makes the times differ: clips of the same size and time count as the same, and both were written just now.
        fs::last_write_time(Disk() / "d/clip",
                            fs::last_write_time(mFolder.Host() / "card/d/clip") - std::chrono::hours(24));
        WriteFile(Disk() / "kept", kOld);
        WriteFile(Disk() / kManifest, ReferenceSha256(kOld) + "  d/clip\n" + ReferenceSha256(kOld) + "  kept\n");
    }

    std::vector<std::string> Arguments() const
    {
        return {FolderOfThisProgram() + "orl",      "ingest",       "--replace", "--files-at-once", "1",
                (mFolder.Host() / "card").string(), Disk().string()};
    }

    /// Expects that each final name has its complete old or new contents, and that every manifest line is correct.
    void ExpectOnlyCompleteFiles() const
    {
        const FileTree disk = ReadTree(Disk());
        for (const auto& [name, contents] : disk) {
            const bool isNew = mCard.count(name) != 0 && contents == mCard.at(name);
            EXPECT_TRUE(IsLeftover(name) || name == kManifest || contents == kOld || isNew) << name;
        }
        EXPECT_EQ(1u, disk.count("d/clip")) << "the real name is never without its file";
        EXPECT_EQ(kOld, ReadFile(Disk() / "kept"));
        const auto manifest = ReadManifest(Disk() / kManifest, true);
        EXPECT_EQ(1u, manifest.count("kept")) << "a line of another file is lost";
        for (const auto& [name, digest] : manifest) {
            ASSERT_EQ(1u, disk.count(name)) << name;
            EXPECT_EQ(ReferenceSha256(disk.at(name)), digest) << name;
        }
    }

    void ExpectComplete() const
    {
        FileTree expected = mCard;
        expected["kept"] = kOld;
        FileTree disk = ReadTree(Disk());
        disk.erase(kManifest);
        // A killed swap may leave the earlier file next to the new one, under a different name.
        for (auto entry = disk.begin(); entry != disk.end();) {
            entry = entry->first.find('~') != std::string::npos ? disk.erase(entry) : std::next(entry);
        }
        EXPECT_EQ(expected, disk);
        std::map<std::string, std::string> digests;
        for (const auto& [name, contents] : expected) {
            if (contents != "/") {
                digests[name] = ReferenceSha256(contents);
            }
        }
        EXPECT_EQ(digests, ReadManifest(Disk() / kManifest));
    }

    /// Returns the number of calls in an undisturbed run, or -1 if tracing is not possible. Thread scheduling varies
    /// the number a little, so this is the median of five runs.
    int CountCalls(TracedRun& ioTraced) const
    {
        std::vector<int> counts(5);
        for (int& calls : counts) {
            RestoreInitialState();
            calls = ioTraced.Run(Arguments(), 0);
            if (calls < 0 || ioTraced.ExitCode() == 99) {
                return -1;
            }
            EXPECT_EQ(0, ioTraced.ExitCode());
            ExpectComplete();
        }
        std::sort(counts.begin(), counts.end());
        return counts[counts.size() / 2];
    }

    /// Returns false if the run ended before that call.
    bool KillBefore(TracedRun& ioTraced, int inNumber) const
    {
        RestoreInitialState();
        ioTraced.Run(Arguments(), inNumber);
        const bool isKilled = ioTraced.ExitCode() == -1;
        if (isKilled) {
            ExpectOnlyCompleteFiles();
            std::vector<std::string> arguments = Arguments();
            arguments.erase(arguments.begin());
            const ProcessResult result = RunBesideThisProgram("orl", arguments);
            EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        } else {
            EXPECT_EQ(0, ioTraced.ExitCode());
        }
        ExpectComplete();
        return isKilled;
    }

    static constexpr int kTries = 100; // retries, as only about every second run reaches a call near the end
    static constexpr const char* kOld = "the earlier clip";

    TempFolder mFolder;
    FileTree mCard;
};

// A file of another size is replaced without comparing; one of the same size is compared first.
constexpr char kOfAnotherSize[] = "the newer clip";
constexpr char kOfTheSameSize[] = "the younger clip";

// The calls are divided among several tests, so that none takes long.
constexpr int kParts = 4;

std::string NameOfPart(const testing::TestParamInfo<std::tuple<const char*, int>>& inInfo)
{
    return std::string(std::get<0>(inInfo.param) == kOfTheSameSize ? "TheSame" : "Another")
           + std::to_string(std::get<1>(inInfo.param));
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Size, CrashedIngest,
                         testing::Combine(testing::Values(kOfAnotherSize, kOfTheSameSize),
                                          testing::Range(1, kParts + 1)),
                         NameOfPart);

TEST_P(CrashedIngest, KilledBeforeEachSystemCall_LosesNothingAndASecondRunCompletes)
{
    TracedRun traced(Disk().string());
    const int calls = CountCalls(traced);
    if (calls < 0) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    ASSERT_LT(50, calls);
    for (int number = std::get<1>(GetParam()); number <= calls + 20 && !HasFailure(); number += kParts) {
        SCOPED_TRACE("killed before call " + std::to_string(number) + " of about " + std::to_string(calls));
        bool isReached = KillBefore(traced, number);
        for (int i = 1; i < kTries && number <= calls && !isReached && !HasFailure(); ++i) {
            isReached = KillBefore(traced, number);
        }
        EXPECT_TRUE(isReached || number > calls);
    }
}
