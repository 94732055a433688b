#include "IngestJson.h"

#include "IngestSummary.h"
#include "JsonText.h"

#include <algorithm>
#include <map>
#include <string>

namespace orl {

namespace {

const char* StateOf(const IngestOutcome::Row* inRow)
{
    if (inRow == nullptr) {
        return "notInPlace";
    }
    return inRow->mDigest.empty() ? "verifiedBefore" : inRow->mWasPresent ? "present" : "copied";
}

std::vector<const ListedFile*> ByName(const std::vector<ListedFile>& inFiles)
{
    std::vector<const ListedFile*> files;
    for (const ListedFile& file : inFiles) {
        files.push_back(&file);
    }
    std::sort(files.begin(), files.end(),
              [](const ListedFile* inLeft, const ListedFile* inRight) { return inLeft->mName < inRight->mName; });
    return files;
}

// Prints a line even for a file that the plan rejected, and for every file of a rejected destination.
void PrintFilesOf(std::ostream& ioStream, const IngestDestination& inDestination,
                  const std::vector<const ListedFile*>& inFiles)
{
    std::map<std::string, const IngestOutcome::Row*> rows;
    for (const IngestOutcome::Row& row : inDestination.mOutcome.mRows) {
        rows[row.mItem->mName] = &row;
    }
    for (const ListedFile* const file : inFiles) {
        const auto found = rows.find(file->mName);
        const IngestOutcome::Row* const row = found == rows.end() ? nullptr : found->second;
        ioStream << "{\"destination\": " << JsonQuoted(inDestination.mRoots.mShownDestination) << ", "
                 << JsonNameMember("file", file->mName) << ", \"state\": \"" << StateOf(row)
                 << "\", \"bytes\": " << file->mStatus.mSize;
        if (row != nullptr && !row->mDigest.empty()) {
            ioStream << ", \"sha256\": \"" << row->mDigest << '"';
        }
        ioStream << "}\n";
    }
}

void PrintExcludedEntry(std::ostream& ioStream, const ExcludedEntry& inEntry)
{
    ioStream << '{' << JsonNameMember("excluded", inEntry.mName);
    if (inEntry.mPattern.empty()) {
        ioStream << ", \"isSystemFolder\": true}\n";
    } else {
        ioStream << ", " << JsonNameMember("pattern", inEntry.mPattern) << "}\n";
    }
}

std::string ErrorsMember(const std::vector<IngestDestination>& inDestinations)
{
    std::string member = "\"errors\": [";
    const char* separator = "";
    for (const IngestTrouble& trouble : TroublesOf(inDestinations)) {
        member += separator + JsonQuoted(trouble.mText);
        separator = ", ";
    }
    return member + ']';
}

const char* WorkOf(const IngestItem& inItem)
{
    switch (inItem.mState) {
    case IngestItem::kToCopy: return "copy";
    case IngestItem::kToCheck: return "compare";
    case IngestItem::kToReplace: return "replace";
    default: return "verifiedBefore";
    }
}

void PrintPlannedFiles(std::ostream& ioStream, const IngestDestination& inDestination)
{
    for (const IngestItem& item : inDestination.mPlan.mItems) {
        ioStream << "{\"destination\": " << JsonQuoted(inDestination.mRoots.mShownDestination) << ", "
                 << JsonNameMember("file", item.mName) << ", \"work\": \"" << WorkOf(item)
                 << "\", \"bytes\": " << item.mSize << "}\n";
    }
}

void PrintVolumes(std::ostream& ioStream, const IngestPreview& inPreview, const IngestDestination& inDestination)
{
    const bool isRefused = inDestination.mPlan.mVolumes.empty();
    ioStream << "{\"destination\": " << JsonQuoted(inDestination.mRoots.mShownDestination)
             << ", \"isRefused\": " << (isRefused ? "true" : "false")
             << ", \"foldersToCreate\": " << inDestination.mPlan.mFolders.size() << ", \"volumes\": [";
    const char* separator = "";
    for (const IngestVolume& volume : inDestination.mPlan.mVolumes) {
        const auto leftovers = inPreview.mLeftovers.find(volume.mVolume);
        ioStream << separator << '{'
                 << JsonNameMember("folder", JoinHostPath(inDestination.mRoots.mShownDestination, volume.mFolder))
                 << ", \"freeBytes\": " << FreeRoomOf(volume, inDestination.mRoots)
                 << ", \"neededBytes\": " << volume.mBytes
                 << ", \"unfinishedBytes\": " << (leftovers == inPreview.mLeftovers.end() ? 0 : leftovers->second)
                 << '}';
        separator = ", ";
    }
    ioStream << "]}\n";
}

void PrintNamesAlike(std::ostream& ioStream, const std::vector<std::string>& inNames)
{
    ioStream << "{\"namesAlike\": [";
    const char* separator = "";
    for (const std::string& name : inNames) {
        ioStream << separator << '{' << JsonNameMember("file", name) << '}';
        separator = ", ";
    }
    ioStream << "]}\n";
}

} // namespace

void PrintIngestJson(std::ostream& ioStream, const std::vector<IngestDestination>& inDestinations,
                     const IngestListing& inListing, const EraseVerdict& inVerdict)
{
    const std::vector<const ListedFile*> files = ByName(inListing.mFiles);
    for (const IngestDestination& destination : inDestinations) {
        PrintFilesOf(ioStream, destination, files);
    }
    for (const ExcludedEntry& entry : inListing.mExcluded) {
        PrintExcludedEntry(ioStream, entry);
    }
    const auto systemFolders = std::count_if(inListing.mExcluded.begin(), inListing.mExcluded.end(),
                                             [](const ExcludedEntry& inEntry) { return inEntry.mPattern.empty(); });
    ioStream << "{\"summary\": true, \"files\": " << inListing.mFiles.size()
             << ", \"excludedByPattern\": " << inListing.mExcluded.size() - static_cast<std::size_t>(systemFolders)
             << ", \"excludedSystemFolders\": " << systemFolders
             << ", \"isSafeToErase\": " << (inVerdict.mIsSafe ? "true" : "false")
             << ", \"verdict\": " << JsonQuoted(inVerdict.mLine) << ", " << ErrorsMember(inDestinations) << '}'
             << std::endl;
}

void PrintPreviewJson(std::ostream& ioStream, const IngestPreview& inPreview,
                      const std::vector<IngestDestination>& inDestinations)
{
    for (const IngestDestination& destination : inDestinations) {
        PrintPlannedFiles(ioStream, destination);
        PrintVolumes(ioStream, inPreview, destination);
    }
    for (const ExcludedEntry& entry : inPreview.mExcluded) {
        PrintExcludedEntry(ioStream, entry);
    }
    for (const std::vector<std::string>& names : inPreview.mNamesAlike) {
        PrintNamesAlike(ioStream, names);
    }
    ioStream << "{\"summary\": true, \"isDryRun\": true, " << ErrorsMember(inDestinations) << '}' << std::endl;
}

} // namespace orl
