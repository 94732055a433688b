// Tests that an ingest never sets the time of a folder of the source.
#include "IngestRunSupport.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

using namespace ORLTest;
using orl::IngestStep;

namespace fs = std::filesystem;

// Another program replaces a folder of the destination with a link into the source while the ingest runs.
TEST_F(IngestRun, AFolderThatComesToLeadIntoTheSource_KeepsItsTime)
{
    mFolder.MakeFolder("card/other");
    mFolder.MakeFolder("card/sub");
    mFolder.MakeFile("card/sub/clip", "a clip");
    const auto time = fs::last_write_time(Card() / "other") - std::chrono::hours(48);
    fs::last_write_time(Card() / "other", time);
    bool isExchanged = false;
    Run([&](IngestStep inStep, const orl::IngestItem& inItem) {
        if (inStep == IngestStep::kInPlace && inItem.mName == "sub/clip") {
            fs::rename(Disk() / "sub", Disk() / "away");
            fs::create_directory_symlink(Card() / "other", Disk() / "sub");
            isExchanged = true;
        }
    });
    EXPECT_TRUE(isExchanged);
    EXPECT_EQ(time, fs::last_write_time(Card() / "other"));
}
