// Tests one ingest with several destinations: each file is read once, and an error at one does not stop the others.
#include "IngestDestinationsSupport.h"

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::IngestDestination;
using orl::IngestItem;
using orl::IngestSettings;
using orl::IngestStep;

namespace fs = std::filesystem;

TEST_F(IngestDestinations, Three_GetEverythingFromOneRead)
{
    for (const IngestDestination& destination : RunTo(3)) {
        EXPECT_TRUE(destination.mOutcome.mTroubles.empty());
        EXPECT_EQ(3u, destination.mOutcome.mRows.size());
    }
    for (std::size_t i = 0; i < 3; ++i) {
        ExpectIngested(mCard, DiskOf(i));
    }
    EXPECT_EQ(BytesOfCard(), mSource.mBytesRead);
    RunTo(3);
    EXPECT_EQ(0u, mSource.mBytesRead) << "all is verified before";
}

TEST_F(IngestDestinations, ANewOneBesideCompleteOnes_IsBroughtUpToDate)
{
    RunTo(2);
    const std::vector<IngestDestination> destinations = RunTo(3);
    EXPECT_EQ(BytesOfCard(), mSource.mBytesRead);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(i < 2, destinations[i].mOutcome.mRows[0].mDigest.empty()) << i;
        ExpectIngested(mCard, DiskOf(i));
    }
}

// A destination that compares and one that copies also share one read.
TEST_F(IngestDestinations, OneThatHasTheFilesAlready_ComparesThem)
{
    fs::copy(Card(), DiskOf(1), fs::copy_options::recursive);
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_EQ(BytesOfCard(), mSource.mBytesRead);
    EXPECT_FALSE(destinations[0].mOutcome.mRows[0].mWasPresent);
    EXPECT_TRUE(destinations[1].mOutcome.mRows[0].mWasPresent);
    ExpectIngested(mCard, DiskOf(0));
    ExpectIngested(mCard, DiskOf(1));
}

// The second disk stalls until the first one has all files.
TEST_F(IngestDestinations, OneThatStands_StopsNoOther)
{
    mFolder.MakeFile("card/long", std::string(9 << 20, 'l'));
    mCard = ReadTree(Card());
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t inPlace = 0;
    IngestSettings settings;
    settings.mFilesAtOnce = 1;
    settings.mSharing.mBytesKept = 0;
    const auto onStep = [&](std::size_t inDestination, IngestStep inStep, const IngestItem&) {
        std::unique_lock<std::mutex> lock(mutex);
        if (inDestination == 0 && inStep == IngestStep::kInPlace) {
            ++inPlace;
            changed.notify_all();
        } else if (inDestination == 1) {
            changed.wait(lock, [&] { return inPlace == mCard.size(); });
        }
    };
    for (const IngestDestination& destination : RunTo(2, onStep, settings)) {
        EXPECT_TRUE(destination.mOutcome.mTroubles.empty());
    }
    ExpectIngested(mCard, DiskOf(0));
    ExpectIngested(mCard, DiskOf(1));
    EXPECT_GT(mSource.mBytesRead, BytesOfCard()) << "what was not kept is read again";
}

TEST_F(IngestDestinations, OneWhereAnotherFileHasAName_LacksThatFileAlone)
{
    mFolder.MakeFolder("disk1");
    mFolder.MakeFile("disk1/b", "another file");
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_TRUE(destinations[0].mOutcome.mTroubles.empty());
    ExpectOnlyTrouble(destinations[1], orl::kExitNameConflict);
    ExpectIngested(mCard, DiskOf(0));
    EXPECT_EQ(2u, ReadManifest(DiskOf(1) / kManifest).size());
    EXPECT_EQ("another file", ReadFile(DiskOf(1) / "b"));
}

TEST_F(IngestDestinations, OneThatIsRefused_StopsNoOther)
{
    mFolder.MakeFolder("disk0");
    mFolder.MakeFile("disk0/ingest.sha256", "a diary\n");
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_TRUE(destinations[0].mOutcome.mIsRefused);
    ExpectOnlyTrouble(destinations[0], orl::kExitFailure);
    EXPECT_EQ((FileTree{{"ingest.sha256", "a diary\n"}}), ReadTree(DiskOf(0)));
    EXPECT_TRUE(destinations[1].mOutcome.mTroubles.empty());
    ExpectIngested(mCard, DiskOf(1));
}

TEST_F(IngestDestinations, AFileThatChanges_IsKeptAtNone)
{
    std::mutex mutex; // keeps both destinations from finishing the file before it has changed
    const OnStep change = Once(IngestStep::kBlockCopied, "b",
                               [this] { std::ofstream(Card() / "b", std::ios::binary | std::ios::app) << "more"; });
    const auto onStep = [&](std::size_t, IngestStep inStep, const IngestItem& inItem) {
        const std::lock_guard<std::mutex> lock(mutex);
        change(inStep, inItem);
    };
    for (const IngestDestination& destination : RunTo(2, onStep)) {
        ExpectOnlyTrouble(destination, orl::kExitChanged);
    }
    FileTree others = mCard;
    others.erase("b");
    ExpectIngested(others, DiskOf(0));
    ExpectIngested(others, DiskOf(1));
}

TEST_F(IngestDestinations, AStop_LeavesNothingHalfAndASecondRunCompletes)
{
    const auto onStep = [this](std::size_t inDestination, IngestStep inStep, const IngestItem& inItem) {
        if (inDestination == 1 && inStep == IngestStep::kBlockCopied && inItem.mName == "b") {
            mIsStopped = true;
        }
    };
    EXPECT_TRUE(RunTo(2, onStep)[1].mOutcome.mIsStopped); // the other destination may have finished before the stop
    for (std::size_t i = 0; i < 2; ++i) {
        for (const auto& [name, contents] : ReadTree(DiskOf(i))) {
            EXPECT_TRUE(name == kManifest || mCard.at(name) == contents) << name;
        }
    }
    mIsStopped = false;
    RunTo(2);
    ExpectIngested(mCard, DiskOf(0));
    ExpectIngested(mCard, DiskOf(1));
}

TEST_F(IngestDestinations, WhereOneLiesInAnother_AreRefused)
{
    const std::string card = Card().u8string();
    const std::string disk = DiskOf(0).u8string();
    for (const bool isThere : {false, true}) {
        EXPECT_THROW(orl::MakeDestinations(card, {disk, disk}), orl::Failure);
        EXPECT_THROW(orl::MakeDestinations(card, {disk, disk + "/inner"}), orl::Failure);
        EXPECT_THROW(orl::MakeDestinations(card, {disk + "/inner/most", disk}), orl::Failure);
        EXPECT_NO_THROW(orl::MakeDestinations(card, {disk, disk + "-other"}));
        if (!isThere) {
            mFolder.MakeFolder("disk0/inner");
        }
    }
}
