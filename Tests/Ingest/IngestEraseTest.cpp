// Tests that "Safe to erase the source" appears only if every file is at enough destinations and the source is
// unchanged.
#include "IngestDestinationsSupport.h"

#include <IngestErase.h>
#include <UnbufferedRead.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace ORLTest;
using orl::IngestDestination;
using orl::IngestItem;
using orl::IngestStep;

namespace fs = std::filesystem;

namespace {

class IngestErase : public IngestDestinations
{
protected:
    std::string LineOf(const std::vector<IngestDestination>& inDestinations, std::size_t inCopies) const
    {
        return orl::JudgeErasing(mSource.mListing, inDestinations, inCopies, [this] { return mIsStopped.load(); })
            .mLine;
    }

    /// Ingests to two destinations, and calls a function that changes the source when the last file is in place at the
    /// first destination.
    std::string LineAfter(const std::function<void()>& inWork)
    {
        const OnStep change = Once(IngestStep::kInPlace, "c", inWork);
        return LineOf(RunTo(2,
                            [&change](std::size_t inDestination, IngestStep inStep, const IngestItem& inItem) {
                                if (inDestination == 0) {
                                    change(inStep, inItem);
                                }
                            }),
                      1);
    }
};

} // namespace

TEST_F(IngestErase, EveryFileAtEveryDestination_IsSafe)
{
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 2 destinations.",
              LineOf(destinations, 2));
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 1 destination or more.",
              LineOf(destinations, 1));
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 2 destinations.", LineOf(RunTo(2), 2))
        << "files that were verified before count";
}

TEST_F(IngestErase, ADestinationThatFails_CountsAgainstTheCopies)
{
    mFolder.MakeFolder("disk0");
    mFolder.MakeFile("disk0/ingest.sha256", "a diary\n");
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_EQ("Safe to erase the source: all of its files (3) are verified at 1 destination or more.",
              LineOf(destinations, 1));
    EXPECT_EQ("Not safe to erase the source: 3 files (the first is \"a\") are verified at fewer than 2 destinations.",
              LineOf(destinations, 2));
}

TEST_F(IngestErase, OneFileThatIsNotInPlace_IsNamed)
{
    mFolder.MakeFolder("disk1");
    mFolder.MakeFile("disk1/b", "another file");
    const std::vector<IngestDestination> destinations = RunTo(2);
    EXPECT_EQ("Not safe to erase the source: 1 file (\"b\") is verified at fewer than 2 destinations.",
              LineOf(destinations, 2));
    EXPECT_TRUE(orl::JudgeErasing(mSource.mListing, destinations, 1, [] { return false; }).mIsSafe);
}

TEST_F(IngestErase, AFileThatIsAdded_IsNotSafe)
{
    EXPECT_EQ("Not safe to erase the source: \"late\" was added during the ingest.",
              LineAfter([this] { mFolder.MakeFile("card/late", "x"); }));
}

TEST_F(IngestErase, AFileThatIsRemoved_IsNotSafe)
{
    // The file is removed after both destinations have copied it.
    EXPECT_EQ("Not safe to erase the source: \"a\" was removed during the ingest.", LineAfter([this] {
                  while (!fs::exists(DiskOf(1) / "a")) {
                      std::this_thread::yield();
                  }
                  fs::remove(Card() / "a");
              }));
}

TEST_F(IngestErase, AFileThatChanges_IsNotSafe)
{
    const auto time = fs::last_write_time(Card() / "a");
    const auto whenBothHaveIt = [this](const std::function<void()>& inWork) {
        return [this, inWork] {
            while (!fs::exists(DiskOf(1) / "a")) {
                std::this_thread::yield();
            }
            inWork();
        };
    };
    const std::string line = "Not safe to erase the source: \"a\" changed during the ingest.";
    EXPECT_EQ(line, LineAfter(whenBothHaveIt([&] {
                  WriteFile(Card() / "a", "another size");
                  fs::last_write_time(Card() / "a", time);
              })));
    fs::remove_all(DiskOf(0));
    fs::remove_all(DiskOf(1));
    EXPECT_EQ(line,
              LineAfter(whenBothHaveIt([&] { fs::last_write_time(Card() / "a", time + std::chrono::seconds(10)); })));
}

TEST_F(IngestErase, AStop_IsNotSafe)
{
    const auto onStep = [this](std::size_t, IngestStep inStep, const IngestItem& inItem) {
        mIsStopped = mIsStopped || (inStep == IngestStep::kBlockCopied && inItem.mName == "b");
    };
    EXPECT_EQ("Not safe to erase the source: the ingest was stopped.", LineOf(RunTo(2, onStep), 1));
}

// The second destination has every file, but the first one stopped responding before it had all of them.
TEST_F(IngestErase, ADiskThatDoesNotAnswer_IsNotSafe)
{
    const auto onStep = [](std::size_t inDestination, IngestStep inStep, const IngestItem& inItem) {
        if (inDestination == 0 && inStep == IngestStep::kBlockCopied && inItem.mName == "b") {
            throw orl::NoAnswer("ingest: \"b\" stopped responding");
        }
    };
    const std::vector<IngestDestination> destinations = RunTo(2, onStep);
    EXPECT_TRUE(destinations[0].mOutcome.mIsDiskUnresponsive);
    ExpectIngested(mCard, DiskOf(1));
    for (const std::size_t copies : {std::size_t{1}, std::size_t{2}}) {
        EXPECT_EQ("Not safe to erase the source: a disk does not answer.", LineOf(destinations, copies));
    }
}

TEST_F(IngestErase, ASourceThatWasPartlyUnreadable_IsNotSafe)
{
    const std::vector<IngestDestination> destinations = RunTo(2);
    mSource.mListing.mTroubles.push_back({"ingest: cannot list the folder \"x\" completely", orl::kExitUnreadable});
    EXPECT_EQ("Not safe to erase the source: some of it cannot be read.", LineOf(destinations, 2));
}

TEST_F(IngestErase, ASourceThatIsGoneAtTheEnd_IsNotSafe)
{
    const std::vector<IngestDestination> destinations = RunTo(2);
    fs::rename(Card(), mFolder.Host() / "away");
    EXPECT_EQ("Not safe to erase the source: it could not be listed again.", LineOf(destinations, 2));
    mFolder.MakeFolder("card"); // an empty folder, like a mount point without its card
    EXPECT_EQ("Not safe to erase the source: it could not be listed again.", LineOf(destinations, 2));
}
