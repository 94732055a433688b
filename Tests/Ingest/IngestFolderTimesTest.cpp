// Tests that the folders of a copy have the last-write times of the source's folders.
#include "IngestDestinationsSupport.h"

#include <IngestSystem.h>
#include <ORLHostPath.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::HeldFolder;
using orl::IngestItem;
using orl::IngestStep;

namespace fs = std::filesystem;

namespace {

constexpr unsigned __int64 kDay = 864000000000;
constexpr unsigned __int64 kStart = 120000000000000000; // a day of 1981

class IngestFolderTimes : public IngestDestinations
{
protected:
    IngestFolderTimes()
    {
        mFolder.MakeFolder("card/CLIP/deep");
        mFolder.MakeFolder("card/CLIP/empty");
        mFolder.MakeFile("card/CLIP/clip", "a clip");
        mFolder.MakeFile("card/CLIP/deep/frame", "a frame");
        mCard = ReadTree(Card());
        for (std::size_t i = 0; i < kFolders.size(); ++i) {
            SetTime(Card() / kFolders[i], kStart + i * kDay);
        }
    }

    static HeldFolder Opened(const fs::path& inFolder)
    {
        HeldFolder folder;
        const UTF16String path = ORL::PathUtils::FromHostPath(inFolder.u8string());
        EXPECT_TRUE(ORL::ResultSucceeded(HeldFolder::Open(path, folder))) << inFolder;
        return folder;
    }

    static void SetTime(const fs::path& inFolder, unsigned __int64 inTime)
    {
        const fs::file_time_type before = fs::last_write_time(inFolder);
        EXPECT_TRUE(ORL::ResultSucceeded(Opened(inFolder).SetLastWriteTime(inTime)));
        EXPECT_NE(before, fs::last_write_time(inFolder));
    }

    void ExpectSameTimes(const fs::path& inDisk) const
    {
        for (const std::string& folder : kFolders) {
            EXPECT_EQ(fs::last_write_time(Card() / folder), fs::last_write_time(inDisk / folder)) << folder;
        }
    }

    const std::vector<std::string> kFolders{"CLIP", "CLIP/deep", "CLIP/empty"};
};

} // namespace

TEST_F(IngestFolderTimes, EachFolder_HasTheTimeOfTheSourceAtEachDestination)
{
    RunTo(2);
    for (std::size_t i = 0; i < 2; ++i) {
        ExpectSameTimes(DiskOf(i));
        ExpectIngested(mCard, DiskOf(i));
    }
}

// Adding a file changes the time of its folder, so a later run must set the time again.
TEST_F(IngestFolderTimes, ALaterRun_SetsThemAgain)
{
    RunTo(1);
    mFolder.MakeFile("card/CLIP/deep/later", "another frame");
    mCard = ReadTree(Card());
    SetTime(Card() / "CLIP/deep", kStart + 5 * kDay);
    RunTo(1);
    ExpectSameTimes(DiskOf(0));
    ExpectIngested(mCard, DiskOf(0));
}

// Even a stopped run sets the times of the folders into which it has copied files.
TEST_F(IngestFolderTimes, ARunThatStops_SetsThemToo)
{
    RunTo(1, [this](std::size_t, IngestStep inStep, const IngestItem& inItem) {
        mIsStopped = mIsStopped || (inStep == IngestStep::kInPlace && inItem.mName == "CLIP/clip");
    });
    EXPECT_TRUE(mIsStopped);
    EXPECT_EQ(fs::last_write_time(Card() / "CLIP"), fs::last_write_time(DiskOf(0) / "CLIP"));
}
