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
#include <map>

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

constexpr std::size_t kMaxRows = 24;
constexpr std::size_t kWidestName = 48;
constexpr std::size_t kShownDigits = 16;
constexpr std::size_t kShownNames = 8; // of excluded entries

/// A file of the source, with the destinations that have it.
struct ShownFile
{
    const IngestItem* mItem = nullptr;
    std::vector<const IngestDestination*> mHolders;
    std::string mDigest; // empty if an earlier run verified the file
    bool mWasPresent = false;
};

std::vector<ShownFile> ShownFilesOf(const std::vector<IngestDestination>& inDestinations)
{
    std::map<std::string, ShownFile> files;
    for (const IngestDestination& destination : inDestinations) {
        for (const IngestOutcome::Row& row : destination.mOutcome.mRows) {
            ShownFile& file = files[row.mItem->mName];
            file.mItem = row.mItem;
            file.mDigest = row.mDigest.empty() ? file.mDigest : row.mDigest;
            file.mWasPresent = row.mWasPresent;
            file.mHolders.push_back(&destination);
        }
    }
    std::vector<ShownFile> list;
    for (auto& [name, file] : files) {
        list.push_back(std::move(file));
    }
    return list;
}

// With several destinations the column shows how many of them have the file.
std::string StateOf(const ShownFile& inFile, std::size_t inDestinations)
{
    if (inDestinations > 1) {
        return std::to_string(inFile.mHolders.size()) + " of " + std::to_string(inDestinations);
    }
    return inFile.mDigest.empty() ? "verified before" : inFile.mWasPresent ? "present" : "verified";
}

// Opens the folder of a source file. Returns false if the file has changed since the plan was made.
bool FindSource(const IngestItem& inItem, const IngestRoots& inRoots, HeldFolder& outFolder)
{
    EntryStatus status;
    return ORL::ResultSucceeded(inRoots.OpenSource(FolderOf(inItem.mName), outFolder))
           && ORL::ResultSucceeded(outFolder.GetStatus(LeafOf(inItem.mName), Links::kFollow, status))
           && status.mSize == inItem.mSize && status.mTime == inItem.mTime;
}

// Reads the source rather than a destination, whose disk may never answer. If the source is gone, reads a destination
// that answered to the end of its run.
std::string LengthOf(const ShownFile& inFile, const NamedRate& inRate)
{
    const IngestItem& item = *inFile.mItem;
    HeldFolder folder;
    bool isFound = FindSource(item, inFile.mHolders.front()->mRoots, folder);
    for (const IngestDestination* const holder : inFile.mHolders) {
        isFound = isFound
                  || (!holder->mOutcome.mIsDiskUnresponsive
                      && ORL::ResultSucceeded(holder->mRoots.OpenDestination(FolderOf(item.mName), folder)));
    }
    return isFound ? TimecodeLength(folder.PathOf(LeafOf(item.mName)), inRate) : std::string();
}

void PrintTable(const std::vector<ShownFile>& inFiles, std::size_t inDestinations, const NamedRate& inRate)
{
    const std::size_t count = std::min(inFiles.size(), kMaxRows);
    std::size_t width = 4;
    for (std::size_t i = 0; i < count; ++i) {
        width = std::max(width, ColumnsOf(TruncateFront(inFiles[i].mItem->mName, kWidestName)));
    }
    const auto line = [width](const std::string& inName, const std::string& inBytes, const std::string& inLength,
                              const std::string& inState, const std::string& inDigest) {
        std::cout << PaddedTo(width, inName) << std::right << std::setw(14) << inBytes << std::setw(13) << inLength
                  << "  " << std::left << std::setw(17) << inState << inDigest << '\n';
    };
    line("file", "bytes", "length", inDestinations > 1 ? "verified at" : "state", "SHA-256");
    for (std::size_t i = 0; i < count; ++i) {
        const ShownFile& file = inFiles[i];
        line(TruncateFront(file.mItem->mName, kWidestName), std::to_string(file.mItem->mSize), LengthOf(file, inRate),
             StateOf(file, inDestinations), file.mDigest.empty() ? "" : file.mDigest.substr(0, kShownDigits) + "...");
    }
    if (inFiles.size() > count) {
        std::cout << "... and " << inFiles.size() - count << " more\n";
    }
}

void PrintSums(const IngestOutcome& inOutcome, std::size_t inFiles)
{
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
    std::cout << files << (files == 1 ? " file" : " files") << " copied and read back, " << FormatSize(bytes) << " in "
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
    std::cout << '.';
}

// Returns the quoted names of the entries that one pattern excludes. The empty pattern stands for system folders.
std::vector<std::string> NamesExcludedBy(const std::string& inPattern, const std::vector<ExcludedEntry>& inExcluded)
{
    std::vector<std::string> names;
    for (const ExcludedEntry& entry : inExcluded) {
        if (entry.mPattern == inPattern) {
            names.push_back('"' + WithoutControlCharacters(entry.mName) + '"');
        }
    }
    return names;
}

std::string FirstOf(const std::vector<std::string>& inNames)
{
    std::string list;
    for (std::size_t i = 0; i < std::min(inNames.size(), kShownNames); ++i) {
        list += (i == 0 ? "" : ", ") + inNames[i];
    }
    return inNames.size() <= kShownNames ? list
                                         : list + ", and " + std::to_string(inNames.size() - kShownNames) + " more";
}

} // namespace

const NamedRate& FindRate(const std::string& inName)
{
    for (const NamedRate& rate : kRates) {
        if (inName == rate.mName) {
            return rate;
        }
    }
    throw Failure("ingest: unknown frame rate \"" + inName + "\"; choose one of " + RateNames(), kExitUsage);
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
    if (!isWav) {
        return "";
    }
    const std::optional<WavLength> length = ReadWavLength(inPath);
    if (!length) {
        return "unknown";
    }
    const mt::TickTime time(static_cast<double>(length->mSamples) / length->mSamplesPerSecond);
    return ToUTF8(ORL::Timecode(time, inRate.mRate, inRate.mDisplay).GetString());
}

void PrintSummary(const std::vector<IngestDestination>& inDestinations, const NamedRate& inRate,
                  const std::string& inManifestName)
{
    const bool areSeveral = inDestinations.size() > 1;
    const std::vector<ShownFile> files = ShownFilesOf(inDestinations);
    if (!files.empty()) {
        PrintTable(files, inDestinations.size(), inRate);
    }
    for (const IngestDestination& destination : inDestinations) {
        const std::string shown = WithoutControlCharacters(destination.mRoots.mShownDestination);
        std::cout << (areSeveral ? "\"" + shown + "\": " : "");
        if (destination.mOutcome.mIsRefused) {
            std::cout << "nothing was begun.\n";
            continue;
        }
        PrintSums(destination.mOutcome, destination.mPlan.mItems.size() + destination.mPlan.mTroubles.size());
        const bool hasManifest = !destination.mOutcome.mRows.empty() && !destination.mOutcome.mIsDiskUnresponsive
                                 && !IsDestinationGone(destination.mRoots);
        if (hasManifest) {
            std::cout << (areSeveral ? " " : "\n") << "The manifest is \""
                      << JoinHostPath(shown, WithoutControlCharacters(inManifestName)) << "\".";
        }
        std::cout << '\n';
    }
}

void PrintExcluded(const std::vector<ExcludedEntry>& inExcluded, const IngestExclusions& inExclusions)
{
    for (const std::string& pattern : inExclusions.Patterns()) {
        const std::vector<std::string> names = NamesExcludedBy(pattern, inExcluded);
        std::cout << "Excluded by \"" << WithoutControlCharacters(pattern) << "\": " << names.size()
                  << (names.size() == 1 ? " entry" : " entries") << (names.empty() ? "" : ": ") << FirstOf(names)
                  << ".\n";
    }
    const std::vector<std::string> folders = NamesExcludedBy(std::string(), inExcluded);
    if (!folders.empty()) {
        std::cout << "System folders that are not copied: " << FirstOf(folders)
                  << " (--no-default-excludes copies them).\n";
    }
}

std::vector<IngestTrouble> TroublesOf(const std::vector<IngestDestination>& inDestinations)
{
    std::map<std::string, std::size_t> counts;
    for (const IngestDestination& destination : inDestinations) {
        for (const IngestTrouble& trouble : destination.mOutcome.mTroubles) {
            ++counts[trouble.mText];
        }
    }
    const std::string who = "ingest: ";
    std::vector<IngestTrouble> troubles;
    for (const IngestDestination& destination : inDestinations) {
        for (const IngestTrouble& trouble : destination.mOutcome.mTroubles) {
            const bool isCommon = counts[trouble.mText] >= inDestinations.size();
            if (!isCommon) {
                troubles.push_back(
                    {who + "\"" + destination.mRoots.mShownDestination + "\": " + trouble.mText.substr(who.size()),
                     trouble.mExitCode});
            } else if (&destination == &inDestinations.front()) {
                troubles.push_back(trouble);
            }
        }
    }
    return troubles;
}

} // namespace orl
