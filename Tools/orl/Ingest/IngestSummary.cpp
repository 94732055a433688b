#include "IngestSummary.h"

#include "Failure.h"
#include "Text.h"
#include "TextWidth.h"
#include "WavHeader.h"

#include <ORLPathUtils.h>
#include <ORLTimecode.h>
#include <tvxmediatypes/Constants.h>

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace orl {

namespace mt = tvxmediatypes;

struct NamedRate
{
    const char* mName;
    mt::FrameRate mRate;
    mt::TimeDisplay mDisplay;
};

namespace {

constexpr NamedRate kRates[] = {
    {"23.976", mt::kFrameRate_23976, mt::kTimeDisplay_23976Timecode},
    {"24", mt::kFrameRate_Film24, mt::kTimeDisplay_24Timecode},
    {"25", mt::kFrameRate_VideoPAL, mt::kTimeDisplay_25Timecode},
    {"29.97", mt::kFrameRate_VideoNTSC, mt::kTimeDisplay_2997NonDropTimecode},
    {"29.97df", mt::kFrameRate_VideoNTSC, mt::kTimeDisplay_2997DropTimecode},
    {"30", mt::kFrameRate_Video30, mt::kTimeDisplay_30Timecode},
    {"50", mt::kFrameRate_VideoPAL_HD, mt::kTimeDisplay_50Timecode},
    {"59.94", mt::kFrameRate_VideoNTSC_HD, mt::kTimeDisplay_5994NonDropTimecode},
    {"59.94df", mt::kFrameRate_VideoNTSC_HD, mt::kTimeDisplay_5994DropTimecode},
    {"60", mt::kFrameRate_Video60, mt::kTimeDisplay_60Timecode},
};

constexpr std::size_t kMostRows = 24;
constexpr std::size_t kWidestName = 48;
constexpr std::size_t kShownDigits = 16;

const char* StateOf(const IngestOutcome::Row& inRow)
{
    return inRow.mDigest.empty() ? "verified before" : inRow.mWasPresent ? "present" : "verified";
}

std::string LengthOf(const IngestOutcome::Row& inRow, const IngestRoots& inRoots, const NamedRate& inRate)
{
    HeldFolder folder;
    const bool isThere = ORL::ResultSucceeded(inRoots.OpenDestination(FolderOf(inRow.mItem->mName), folder));
    return isThere ? TimecodeLength(folder.PathOf(LeafOf(inRow.mItem->mName)), inRate) : std::string();
}

void PrintTable(const std::vector<IngestOutcome::Row>& inRows, const IngestRoots& inRoots, const NamedRate& inRate)
{
    const std::size_t count = std::min(inRows.size(), kMostRows);
    std::size_t width = 4;
    for (std::size_t i = 0; i < count; ++i) {
        width = std::max(width, ColumnsOf(EndOf(inRows[i].mItem->mName, kWidestName)));
    }
    const auto line = [width](const std::string& inName, const std::string& inBytes, const std::string& inLength,
                              const std::string& inState, const std::string& inDigest) {
        std::cout << PaddedTo(width, inName) << std::right << std::setw(14) << inBytes << std::setw(13) << inLength
                  << "  " << std::left << std::setw(17) << inState << inDigest << '\n';
    };
    line("file", "bytes", "length", "state", "SHA-256");
    for (std::size_t i = 0; i < count; ++i) {
        const IngestOutcome::Row& row = inRows[i];
        const bool isNew = !row.mDigest.empty();
        line(EndOf(row.mItem->mName, kWidestName), std::to_string(row.mItem->mSize), LengthOf(row, inRoots, inRate),
             StateOf(row), isNew ? row.mDigest.substr(0, kShownDigits) + "..." : "");
    }
    if (inRows.size() > count) {
        std::cout << "... and " << inRows.size() - count << " more\n";
    }
}

} // namespace

const NamedRate& FindRate(const std::string& inName)
{
    for (const NamedRate& rate : kRates) {
        if (inName == rate.mName) {
            return rate;
        }
    }
    throw Failure("ingest: no frame rate is called \"" + inName + "\": there are " + RateNames(), kExitUsage);
}

std::string RateNames()
{
    std::string names;
    for (const NamedRate& rate : kRates) {
        names += (names.empty() ? "" : ", ") + std::string(rate.mName);
    }
    return names;
}

std::string TimecodeLength(const UTF16String& inPath, const NamedRate& inRate)
{
    const std::string extension = ToUTF8(ORL::PathUtils::GetExtensionPart(inPath));
    const bool isWav =
        extension.size() == 4 && std::equal(extension.begin(), extension.end(), ".wav", [](char inLeft, char inRight) {
            return inLeft == inRight || (inLeft | 0x20) == inRight;
        });
    const std::optional<WavLength> length = isWav ? ReadWavLength(inPath) : std::nullopt;
    if (!length) {
        return "";
    }
    const mt::TickTime time(static_cast<double>(length->mSamples) / length->mSamplesPerSecond);
    return ToUTF8(ORL::Timecode(time, inRate.mRate, inRate.mDisplay).GetString());
}

void PrintSummary(const IngestOutcome& inOutcome, const IngestRoots& inRoots, std::size_t inFiles,
                  const NamedRate& inRate, const std::string& inManifest)
{
    if (!inOutcome.mRows.empty()) {
        PrintTable(inOutcome.mRows, inRoots, inRate);
    }
    std::uint64_t bytes = 0;
    std::size_t files = 0;
    std::size_t present = 0;
    std::size_t before = 0;
    for (const IngestOutcome::Row& row : inOutcome.mRows) {
        const bool isCopied = !row.mDigest.empty() && !row.mWasPresent;
        bytes += isCopied ? row.mItem->mSize : 0;
        files += isCopied ? 1 : 0;
        present += row.mWasPresent ? 1 : 0;
        before += row.mDigest.empty() ? 1 : 0;
    }
    std::cout << files << (files == 1 ? " file" : " files") << " copied and read back, " << InWords(bytes) << " in "
              << Rounded(inOutcome.mSeconds) << " s";
    if (inOutcome.mSeconds > 0 && bytes != 0) {
        std::cout << " (" << Rounded(static_cast<double>(bytes) / 1e6 / inOutcome.mSeconds) << " MB/s)";
    }
    if (present != 0) {
        std::cout << ", " << present << " present and compared";
    }
    if (before != 0) {
        std::cout << ", " << before << " verified before";
    }
    if (inOutcome.mRows.size() < inFiles) {
        std::cout << ", " << inFiles - inOutcome.mRows.size() << " not in place";
    }
    std::cout << ".\nThe manifest is \"" << inManifest << "\".\n";
}

} // namespace orl
