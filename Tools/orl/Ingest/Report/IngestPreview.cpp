#include "IngestPreview.h"

#include "../Plan/IngestNames.h"
#include "Failure.h"
#include "Text.h"
#include "TextWidth.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <set>

namespace orl {

namespace {

constexpr std::size_t kMostRows = 24;
constexpr std::size_t kWidestName = 48;

class Previewer
{
public:
    Previewer(const std::string& inManifestName, const IngestSettings& inSettings,
              const std::function<bool()>& inIsStopped)
        : mManifestName(inManifestName), mSettings(inSettings), mIsStopped(inIsStopped)
    {
    }

    IngestPreview Preview(std::vector<IngestDestination>& ioDestinations)
    {
        const IngestListing listing = ListSource(ioDestinations.front().mRoots, mIsStopped, mSettings.mExclusions);
        mPreview.mExcluded = listing.mExcluded;
        mPreview.mNamesAlike = FindNamesAlike(listing.mFiles);
        for (IngestDestination& destination : ioDestinations) {
            try {
                PreviewOne(destination, listing);
            } catch (const Failure& failure) {
                if (failure.ExitCode() == kExitStopped || failure.ExitCode() == kExitEmpty) {
                    throw;
                }
                destination.mOutcome.mIsRefused = true;
                destination.mOutcome.mTroubles.push_back({failure.what(), failure.ExitCode()});
            }
        }
        return std::move(mPreview);
    }

private:
    // Performs the checks of a run in the same order, without writing.
    void PreviewOne(IngestDestination& ioDestination, const IngestListing& inListing)
    {
        const IngestRoots& roots = ioDestination.mRoots;
        if (roots.mHasDestination && inListing.mIdentities.count(roots.mDestinationIdentity) != 0) {
            throw Failure("ingest: the destination \"" + roots.mShownDestination + "\" lies inside the source");
        }
        const ORL::Result writable = roots.CheckDestinationWritable();
        if (!ORL::ResultSucceeded(writable)) {
            throw Failure("ingest: cannot write to the destination \"" + roots.mShownDestination
                          + "\": " + Describe(writable));
        }
        IngestRecord record(roots, mManifestName);
        IngestManifest manifest(roots, mManifestName, record);
        if (roots.mHasDestination) {
            record.Peek();
            manifest.Read();
            CountLeftovers(roots, record.Remains().mTemporaries, inListing.mIdentities);
        }
        ioDestination.mPlan = MakePlan(inListing, {roots, mManifestName, manifest, nullptr, mSettings.mReplaces,
                                                   mSettings.mKeepsPermissions, mIsStopped, true});
        ioDestination.mOutcome.mTroubles = ioDestination.mPlan.mTroubles;
        CheckFreeSpace(ioDestination.mPlan, roots, mReserved);
    }

    void CountLeftovers(const IngestRoots& inRoots, const std::set<std::string>& inNames,
                        const std::set<EntryIdentity>& inSourceFolders)
    {
        for (const std::string& name : inNames) {
            HeldFolder folder;
            EntryStatus status;
            const bool isOurs = ORL::ResultSucceeded(inRoots.OpenDestination(FolderOf(name), folder))
                                && inSourceFolders.count(folder.Identity()) == 0
                                && ORL::ResultSucceeded(folder.GetStatus(LeafOf(name), Links::kNoFollow, status))
                                && status.mKind == EntryStatus::kFile;
            if (isOurs) {
                mPreview.mLeftovers[folder.Identity().mVolume] += status.mAllocated;
                mReserved[folder.Identity().mVolume] -= static_cast<std::int64_t>(status.mAllocated);
            }
        }
    }

    const std::string& mManifestName;
    const IngestSettings& mSettings;
    const std::function<bool()>& mIsStopped;
    ReservedSpace mReserved;
    IngestPreview mPreview;
};

const char* WorkOf(const IngestItem& inItem)
{
    switch (inItem.mState) {
    case IngestItem::kToCopy: return "copy";
    case IngestItem::kToCheck: return "compare";
    case IngestItem::kToReplace: return "replace";
    default: return "verified before";
    }
}

void PrintFiles(const std::vector<IngestItem>& inItems)
{
    const std::size_t count = std::min(inItems.size(), kMostRows);
    std::size_t width = 4;
    for (std::size_t i = 0; i < count; ++i) {
        width = std::max(width, ColumnsOf(TruncateFront(inItems[i].mName, kWidestName)));
    }
    const auto line = [width](const std::string& inName, const std::string& inBytes, const char* inWork) {
        std::cout << "  " << PaddedTo(width, inName) << std::right << std::setw(14) << inBytes << "  " << inWork
                  << '\n';
    };
    line("file", "bytes", "work");
    for (std::size_t i = 0; i < count; ++i) {
        line(TruncateFront(inItems[i].mName, kWidestName), std::to_string(inItems[i].mSize), WorkOf(inItems[i]));
    }
    if (inItems.size() > count) {
        std::cout << "  ... and " << inItems.size() - count << " more\n";
    }
}

void PrintSums(const IngestPlan& inPlan)
{
    std::uint64_t bytes = 0;
    std::map<IngestItem::State, std::size_t> counts;
    for (const IngestItem& item : inPlan.mItems) {
        ++counts[item.mState];
        const bool isCopied = item.mState == IngestItem::kToCopy || item.mState == IngestItem::kToReplace;
        bytes += isCopied ? item.mSize : 0;
    }
    const std::size_t files = counts[IngestItem::kToCopy] + counts[IngestItem::kToReplace];
    std::cout << files << (files == 1 ? " file" : " files") << " to copy, " << FormatSize(bytes);
    if (counts[IngestItem::kToReplace] != 0) {
        std::cout << " (" << counts[IngestItem::kToReplace] << " replace another file)";
    }
    if (counts[IngestItem::kToCheck] != 0) {
        std::cout << ", " << counts[IngestItem::kToCheck] << " present, to be compared";
    }
    if (counts[IngestItem::kVerifiedBefore] != 0) {
        std::cout << ", " << counts[IngestItem::kVerifiedBefore] << " verified before";
    }
    if (!inPlan.mFolders.empty()) {
        std::cout << ", " << inPlan.mFolders.size() << (inPlan.mFolders.size() == 1 ? " folder" : " folders")
                  << " to create";
    }
    std::cout << ".\n";
}

void PrintRoom(const IngestPreview& inPreview, const IngestDestination& inDestination)
{
    for (const IngestVolume& volume : inDestination.mPlan.mVolumes) {
        const auto leftovers = inPreview.mLeftovers.find(volume.mVolume);
        std::cout << "  Room at \""
                  << WithoutControlCharacters(JoinHostPath(inDestination.mRoots.mShownDestination, volume.mFolder))
                  << "\": " << FormatSize(FreeRoomOf(volume, inDestination.mRoots)) << " free, "
                  << FormatSize(volume.mBytes) << " needed";
        if (leftovers != inPreview.mLeftovers.end()) {
            std::cout << ", " << FormatSize(leftovers->second) << " of unfinished files are deleted first";
        }
        std::cout << ".\n";
    }
}

} // namespace

IngestPreview PreviewIngest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                            const IngestSettings& inSettings, const std::function<bool()>& inIsStopped)
{
    return Previewer(inManifestName, inSettings, inIsStopped).Preview(ioDestinations);
}

void PrintPreview(const IngestPreview& inPreview, const std::vector<IngestDestination>& inDestinations)
{
    for (const IngestDestination& destination : inDestinations) {
        const bool hasPlan = !destination.mPlan.mVolumes.empty();
        std::cout << '"' << WithoutControlCharacters(destination.mRoots.mShownDestination) << "\": ";
        if (!hasPlan) {
            std::cout << "refused.\n";
            continue;
        }
        PrintSums(destination.mPlan);
        PrintFiles(destination.mPlan.mItems);
        PrintRoom(inPreview, destination);
    }
    for (const std::vector<std::string>& names : inPreview.mNamesAlike) {
        std::cout << "Names that differ only in case, one file on a volume that ignores case:";
        for (const std::string& name : names) {
            std::cout << " \"" << WithoutControlCharacters(name) << '"';
        }
        std::cout << '\n';
    }
    std::cout << "Nothing was copied (--dry-run)." << std::endl;
}

} // namespace orl
