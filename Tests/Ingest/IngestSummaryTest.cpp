// Tests from which copy of a WAV file the summary table gets the file's length.
#include "IngestDestinationsSupport.h"

#include <IngestSummary.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;
using orl::IngestDestination;

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kSamplesPerSecond = 8000;

class IngestSummaryOf : public IngestDestinations
{
protected:
    IngestSummaryOf()
    {
        WriteFile(Card() / "one second.wav", WavOf(1));
        mCard = ReadTree(Card());
    }

    static std::string WavOf(std::uint32_t inSeconds)
    {
        return MakeWav(kSamplesPerSecond, inSeconds * kSamplesPerSecond);
    }

    /// Returns whether the table shows this length for the file.
    static bool ShowsLength(const std::vector<IngestDestination>& inDestinations, const std::string& inLength)
    {
        testing::internal::CaptureStdout();
        orl::PrintSummary(inDestinations, orl::FindRate("25"), kManifest);
        const std::string text = testing::internal::GetCapturedStdout();
        const std::size_t line = text.find("one second.wav");
        EXPECT_NE(std::string::npos, line) << text;
        return text.substr(line, text.find('\n', line) - line).find(inLength) != std::string::npos;
    }
};

constexpr char kOneSecond[] = "00:00:01:00";
constexpr char kTwoSeconds[] = "00:00:02:00";
constexpr char kAnyLength[] = ":";

} // namespace

// While the source is available, it is read, because a destination's disk may have stopped responding.
TEST_F(IngestSummaryOf, TwoDestinations_ReadsTheSource)
{
    std::vector<IngestDestination> destinations = RunTo(2);
    for (std::size_t i = 0; i < 2; ++i) {
        WriteFile(DiskOf(i) / "one second.wav", WavOf(2));
        destinations[i].mOutcome.mIsDiskUnresponsive = true;
    }
    EXPECT_TRUE(ShowsLength(destinations, kOneSecond));
}

TEST_F(IngestSummaryOf, ASourceThatIsGone_ReadsADestinationThatAnswers)
{
    std::vector<IngestDestination> destinations = RunTo(2);
    fs::rename(Card(), mFolder.Host() / "away");
    for (std::size_t dead = 0; dead < 2; ++dead) {
        WriteFile(DiskOf(dead) / "one second.wav", WavOf(2));
        WriteFile(DiskOf(1 - dead) / "one second.wav", WavOf(1));
        destinations[dead].mOutcome.mIsDiskUnresponsive = true;
        destinations[1 - dead].mOutcome.mIsDiskUnresponsive = false;
        EXPECT_TRUE(ShowsLength(destinations, kOneSecond)) << dead;
    }
    destinations[0].mOutcome.mIsDiskUnresponsive = true;
    EXPECT_FALSE(ShowsLength(destinations, kAnyLength)) << "no disk is left to read from";
}

// An empty cell would mean that the file is no WAV file.
TEST_F(IngestSummaryOf, AHeaderWithoutALength_IsShownAsUnknown)
{
    WriteFile(Card() / "one second.wav", WavOf(1).substr(0, 30));
    WriteFile(Card() / "text", "no WAV file");
    EXPECT_TRUE(ShowsLength(RunTo(1), " unknown "));
    EXPECT_EQ("", orl::TimecodeLength(mFolder.Path(u"card\\text"), orl::FindRate("25")));
}

TEST_F(IngestSummaryOf, ASourceFileThatChanged_ReadsTheVerifiedCopy)
{
    const std::vector<IngestDestination> destinations = RunTo(1);
    ChangeOnCard("one second.wav", WavOf(2));
    EXPECT_TRUE(ShowsLength(destinations, kOneSecond));
    EXPECT_FALSE(ShowsLength(destinations, kTwoSeconds));
}
