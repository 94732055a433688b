// Tests that a source with an entry that cannot be read is never reported as safe to erase. The entry is a dangling
// link, which no user can read.
#include "IngestDestinationsSupport.h"

#include <IngestErase.h>
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class IngestEraseOnLinux : public IngestDestinations
{
protected:
    std::string LineOf(const std::vector<orl::IngestDestination>& inDestinations) const
    {
        return orl::JudgeErasing(mSource.mListing, inDestinations, 1, [] { return false; }).mLine;
    }
};

} // namespace

TEST_F(IngestEraseOnLinux, AnEntryThatCannotBeRead_IsNotSafe)
{
    fs::create_symlink("nowhere", Card() / "link");
    const std::vector<orl::IngestDestination> destinations = RunTo(2);
    ExpectIngested(mCard, DiskOf(0));
    EXPECT_EQ("Not safe to erase the source: some of it cannot be read.", LineOf(destinations));
    const ProcessResult result = RunBesideThisProgram("orl", {"ingest", Card().string(), DiskOf(0).string()});
    EXPECT_EQ(orl::kExitUnreadable, result.mExitCode);
    const std::string line = "Not safe to erase the source: some of it cannot be read.\n";
    ASSERT_LE(line.size(), result.mOutput.size());
    EXPECT_EQ(line, result.mOutput.substr(result.mOutput.size() - line.size()));
}

TEST_F(IngestEraseOnLinux, AnEntryThatBecomesUnreadable_IsNotSafe)
{
    const std::vector<orl::IngestDestination> destinations = RunTo(2);
    fs::create_symlink("nowhere", Card() / "link");
    EXPECT_EQ("Not safe to erase the source: it could not be listed again.", LineOf(destinations));
}
