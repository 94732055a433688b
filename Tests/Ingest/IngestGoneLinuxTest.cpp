// Tests a destination that disappears during an ingest. Linux only: on Windows an open file keeps its folder in place.
#include "IngestDestinationsSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;
using orl::IngestOutcome;
using orl::IngestStep;

namespace {

namespace fs = std::filesystem;

class IngestOnLinux : public IngestRun
{
};

} // namespace

// Nothing may be written to the disk below the mount point, and no file on the removed disk may be acknowledged.
TEST_F(IngestOnLinux, ADestinationThatLeavesItsMountPoint_EndsTheRunWithOneLine)
{
    const fs::path away = Disk().u8string() + "-away";
    const IngestOutcome outcome = Run(Once(IngestStep::kInPlace, "a", [&] {
        fs::create_directory(away);
        for (const auto& entry : fs::directory_iterator(Disk())) {
            fs::rename(entry.path(), away / entry.path().filename());
        }
        fs::rename(Disk(), Disk().u8string() + "-empty");
        fs::create_directory(Disk());
    }));
    ExpectTrouble(outcome, orl::kExitDisappeared, "is gone");
    EXPECT_TRUE(outcome.mRows.empty());
    EXPECT_TRUE(fs::is_empty(Disk()));
    EXPECT_EQ(mCard["a"], ReadFile(away / "a"));
    EXPECT_EQ("", ReadFile(away / kManifest));
}

TEST_F(IngestOnLinux, ADestinationThatVanishes_EndsTheRunWithOneLine)
{
    const IngestOutcome outcome =
        Run(Once(IngestStep::kInPlace, "a", [this] { fs::rename(Disk(), Disk().u8string() + "-away"); }));
    ExpectTrouble(outcome, orl::kExitDisappeared, "is gone");
    EXPECT_FALSE(fs::exists(Disk()));
}

TEST_F(IngestDestinations, OneThatIsGone_StopsNoOther)
{
    const auto onStep = [this](std::size_t inDestination, orl::IngestStep inStep, const orl::IngestItem& inItem) {
        if (inDestination == 1 && inStep == orl::IngestStep::kInPlace && inItem.mName == "a") {
            std::filesystem::rename(DiskOf(1), DiskOf(7));
        }
    };
    orl::IngestSettings settings;
    settings.mFilesAtOnce = 1;
    const std::vector<orl::IngestDestination> destinations = RunTo(3, onStep, settings);
    EXPECT_TRUE(destinations[0].mOutcome.mTroubles.empty());
    ExpectOnlyTrouble(destinations[1], orl::kExitDisappeared);
    EXPECT_TRUE(destinations[2].mOutcome.mTroubles.empty());
    ExpectIngested(mCard, DiskOf(0));
    ExpectIngested(mCard, DiskOf(2));
}
