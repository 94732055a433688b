#include "IngestPlan.h"

#include "Failure.h"
#include "IngestNames.h"
#include "IngestTimes.h"
#include "Text.h"

#include <ORLDiskUtils.h>

#include <algorithm>
#include <map>

namespace orl {

namespace {

/// A folder of the destination at planning time.
struct PlannedFolder
{
    enum State { kExists, kToBeCreated, kRefused };

    State mState = kRefused;
    std::size_t mVolume = 0; // index in IngestPlan::mVolumes
};

class Planner
{
public:
    explicit Planner(IngestListing inListing, const IngestPlanRequest& inRequest)
        : mRequest(inRequest), mRoots(inRequest.mRoots), mListing(std::move(inListing))
    {
    }

    IngestPlan Make()
    {
        mPlan.mTroubles = std::move(mListing.mTroubles);
        mPlan.mIncomplete = std::move(mListing.mIncomplete);
        mPlan.mSourceFolders = mListing.mIdentities;
        CheckListing();
        PlanFolders();
        std::sort(mListing.mFiles.begin(), mListing.mFiles.end(),
                  [](const ListedFile& inLeft, const ListedFile& inRight) { return inLeft.mName < inRight.mName; });
        const std::set<std::string> taken =
            mRequest.mIsDryRun ? std::set<std::string>() : FindCollisions(mListing.mFiles, mRoots, mRequest.mRecord);
        for (const ListedFile& file : mListing.mFiles) {
            CheckStopped();
            if (taken.count(file.mName) == 0) {
                AddFile(file);
            } else {
                AddTrouble("\"" + file.mName
                               + "\" and another file of the source have the same name on the destination's volume; "
                                 "only one of them is copied",
                           kExitNameConflict);
                mPlan.mIncomplete.insert(FolderOf(file.mName));
            }
        }
        return std::move(mPlan);
    }

private:
    void CheckListing() const
    {
        if (mListing.mFiles.empty() && mPlan.mTroubles.empty()) {
            const auto isOfUser = [](const ExcludedEntry& inEntry) { return !inEntry.mPattern.empty(); };
            const bool isByPattern = std::any_of(mListing.mExcluded.begin(), mListing.mExcluded.end(), isOfUser);
            throw Failure("ingest: the source \"" + mRoots.mShownSource + "\" contains no files "
                              + (isByPattern ? "that are not excluded" : "(is the card mounted?)"),
                          kExitEmpty);
        }
        const auto hasItsName = [this](const ListedFile& inFile) { return inFile.mName == mRequest.mManifestName; };
        if (std::any_of(mListing.mFiles.begin(), mListing.mFiles.end(), hasItsName)) {
            throw Failure("ingest: the source contains a file with the manifest's name, \"" + mRequest.mManifestName
                          + "\" (choose another name with --manifest)");
        }
    }

    // Visits each folder after its parent. A folder below a rejected one is rejected without a message.
    void PlanFolders()
    {
        mPlan.mVolumes.push_back({});
        mPlan.mVolumes.back().mVolume = mRoots.mVolume;
        mPlannedFolders[""] = {mRoots.mHasDestination ? PlannedFolder::kExists : PlannedFolder::kToBeCreated, 0};
        mVolumes[mRoots.mVolume] = 0;
        for (const ListedFolder& folder : mListing.mFolders) {
            const PlannedFolder above = mPlannedFolders[FolderOf(folder.mName)];
            PlannedFolder& planned = mPlannedFolders[folder.mName];
            planned = above.mState == PlannedFolder::kExists ? PlanFolder(folder.mName, above) : above;
            if (planned.mState == PlannedFolder::kToBeCreated) {
                mPlan.mFolders.push_back(folder.mName);
            }
            if (planned.mState != PlannedFolder::kRefused) {
                mPlan.mTree.push_back(folder);
            } else {
                mPlan.mIncomplete.insert(FolderOf(folder.mName));
            }
        }
    }

    PlannedFolder PlanFolder(const std::string& inFolder, const PlannedFolder& inAbove)
    {
        HeldFolder held;
        const ORL::Result result = mRoots.OpenDestination(inFolder, held);
        if (result == ORL::kFileNotFound) {
            return PlanNewFolder(inFolder, inAbove);
        }
        if (result == ORL::kPathNotFound) {
            AddTrouble("cannot create the folder \"" + inFolder
                           + "\": the destination has a file of that name, which was kept",
                       kExitNameConflict);
            return {};
        }
        if (!ORL::ResultSucceeded(result)) {
            AddTrouble("cannot open the folder \"" + inFolder + "\" at the destination: " + Describe(result),
                       kExitFailure);
            return {};
        }
        if (mPlan.mSourceFolders.count(held.Identity()) != 0) {
            AddTrouble("the folder \"" + inFolder
                           + "\" at the destination leads into the source; nothing was written there",
                       kExitNameConflict);
            return {};
        }
        return {PlannedFolder::kExists, VolumeOf(held.Identity(), inFolder)};
    }

    // Checks for a dangling link, which occupies the name although opening it fails.
    PlannedFolder PlanNewFolder(const std::string& inFolder, const PlannedFolder& inAbove)
    {
        HeldFolder above;
        EntryStatus status;
        if (ORL::ResultSucceeded(mRoots.OpenDestination(FolderOf(inFolder), above))
            && ORL::ResultSucceeded(above.GetStatus(LeafOf(inFolder), Links::kNoFollow, status))) {
            AddTrouble("cannot create the folder \"" + inFolder
                           + "\": the destination has a dangling link of that name, which was kept",
                       kExitNameConflict);
            return {};
        }
        return {PlannedFolder::kToBeCreated, inAbove.mVolume};
    }

    std::size_t VolumeOf(const EntryIdentity& inFolder, const std::string& inName)
    {
        const auto [volume, isNew] = mVolumes.insert({inFolder.mVolume, mPlan.mVolumes.size()});
        if (isNew) {
            mPlan.mVolumes.push_back({});
            mPlan.mVolumes.back().mVolume = inFolder.mVolume;
            mPlan.mVolumes.back().mFolder = inName;
        }
        return volume->second;
    }

    void AddFile(const ListedFile& inFile)
    {
        const PlannedFolder& planned = mPlannedFolders[FolderOf(inFile.mName)];
        IngestItem item;
        item.mName = inFile.mName;
        item.mSize = inFile.mStatus.mSize;
        item.mAllocated = inFile.mStatus.mAllocated;
        item.mTime = inFile.mStatus.mTime;
        item.mPermissions = inFile.mStatus.mPermissions;
        if (planned.mState == PlannedFolder::kRefused
            || (planned.mState == PlannedFolder::kExists && !FindState(inFile, item))) {
            mPlan.mIncomplete.insert(FolderOf(inFile.mName));
            return;
        }
        if (item.mState == IngestItem::kToCopy || item.mState == IngestItem::kToReplace) {
            AddRequiredBytes(mPlan.mVolumes[planned.mVolume], item);
        }
        mPlan.mBytesToRead += item.mState != IngestItem::kVerifiedBefore ? 2 * item.mSize : 0;
        mPlan.mItems.push_back(std::move(item));
    }

    static void AddRequiredBytes(IngestVolume& ioVolume, const IngestItem& inItem)
    {
        constexpr std::uint64_t kCluster = 4096;
        ioVolume.mBytes += (std::min(inItem.mSize, inItem.mAllocated) + kCluster - 1) / kCluster * kCluster;
        if (inItem.mSize > ioVolume.mLargest) {
            ioVolume.mLargest = inItem.mSize;
            ioVolume.mLargestName = inItem.mName;
        }
    }

    const HeldFolder& OpenedFolder(const std::string& inFolder)
    {
        if (!mOpened.IsOpen() || mOpenedName != inFolder) {
            mOpened = HeldFolder();
            mRoots.OpenDestination(inFolder, mOpened);
            mOpenedName = inFolder;
        }
        return mOpened;
    }

    bool FindState(const ListedFile& inFile, IngestItem& ioItem)
    {
        const HeldFolder& folder = OpenedFolder(FolderOf(ioItem.mName));
        EntryStatus status;
        const ORL::Result result =
            folder.IsOpen() ? folder.GetStatus(LeafOf(ioItem.mName), Links::kNoFollow, status) : ORL::kPathNotFound;
        if (result == ORL::kFileNotFound) {
            return true;
        }
        if (!ORL::ResultSucceeded(result)) {
            AddTrouble("cannot read the status of \"" + ioItem.mName + "\" at the destination: " + Describe(result),
                       kExitFailure);
            return false;
        }
        return IsReplaceable(inFile, status) && FindStateBeside(status, folder, ioItem);
    }

    bool IsReplaceable(const ListedFile& inFile, const EntryStatus& inStatus)
    {
        const char* const what = inStatus.mKind == EntryStatus::kLink             ? "a link"
                                 : inStatus.mKind == EntryStatus::kFolder         ? "a folder"
                                 : inStatus.mKind != EntryStatus::kFile           ? "a device or a pipe"
                                 : inStatus.mIdentity == inFile.mStatus.mIdentity ? "the source file itself"
                                                                                  : nullptr;
        if (what != nullptr) {
            AddTrouble("cannot copy \"" + inFile.mName + "\": its name at the destination is taken by " + what
                           + ", which was kept",
                       kExitNameConflict);
        }
        return what == nullptr;
    }

    bool FindStateBeside(const EntryStatus& inStatus, const HeldFolder& inFolder, IngestItem& ioItem)
    {
        ioItem.mEarlier = inStatus.mIdentity;
        if (inStatus.mSize == ioItem.mSize) {
            const bool isKnown = mRequest.mManifest.IsTrusted() && mRequest.mManifest.Holds(ioItem.mName)
                                 && HasSameTime(inStatus, inFolder, ioItem)
                                 && (!mRequest.mKeepsPermissions || inStatus.mPermissions == ioItem.mPermissions);
            ioItem.mState = isKnown ? IngestItem::kVerifiedBefore : IngestItem::kToCheck;
            return true;
        }
        if (mRequest.mReplaces) {
            ioItem.mState = IngestItem::kToReplace;
            return true;
        }
        AddTrouble("cannot copy \"" + ioItem.mName + "\": " + kTakenByOtherFile, kExitNameConflict);
        return false;
    }

    bool HasSameTime(const EntryStatus& inStatus, const HeldFolder& inFolder, const IngestItem& inItem) const
    {
        return inStatus.mTime == inItem.mTime
               || (mRequest.mRecord != nullptr
                   && StoredTimeFor(inItem.mTime, inFolder, FolderOf(inItem.mName), *mRequest.mRecord)
                          == inStatus.mTime);
    }

    void CheckStopped() const
    {
        if (mRequest.mIsStopped()) {
            throw Failure("ingest: stopped by the user; nothing was begun", kExitStopped);
        }
    }

    void AddTrouble(const std::string& inText, int inExitCode)
    {
        mPlan.mTroubles.push_back({"ingest: " + inText, inExitCode});
    }

    const IngestPlanRequest& mRequest;
    const IngestRoots& mRoots;
    IngestListing mListing;
    IngestPlan mPlan;
    std::map<std::string, PlannedFolder> mPlannedFolders; // key: name of the folder
    std::map<std::uint64_t, std::size_t> mVolumes;        // maps a volume to its index in mPlan.mVolumes
    HeldFolder mOpened;
    std::string mOpenedName;
};

/// Holds a folder on the volume whose free space is queried, and the library path of that folder.
struct Measured
{
    Measured(const IngestVolume& inVolume, const IngestRoots& inRoots)
    {
        const bool isHeld =
            inRoots.mHasDestination && ORL::ResultSucceeded(inRoots.OpenDestination(inVolume.mFolder, mFolder));
        mPath = isHeld ? mFolder.Path() : inRoots.mDestination;
    }

    HeldFolder mFolder;
    UTF16String mPath; // valid while the folder is held
};

void CheckFreeSpaceOf(const IngestVolume& inVolume, const IngestRoots& inRoots, std::int64_t inPromised)
{
    if (inVolume.mLargest == 0) {
        return;
    }
    const Measured measured(inVolume, inRoots);
    const UTF16String& path = measured.mPath;
    const std::string shown = JoinHostPath(inRoots.mShownDestination, inVolume.mFolder);
    const std::uint64_t free = ORL::DiskUtils::GetFreeSpaceFromPath(path);
    const auto bytes =
        static_cast<std::uint64_t>(std::max<std::int64_t>(0, inPromised + static_cast<std::int64_t>(inVolume.mBytes)));
    if (bytes > free) {
        throw Failure("ingest: \"" + shown + "\" has " + FormatSize(free) + " free, but " + FormatSize(bytes)
                          + " are needed; nothing was begun",
                      kExitNoSpace);
    }
    unsigned __int64 largest = 0;
    if (ORL::ResultSucceeded(ORL::DiskUtils::GetMaxFileSize(path, largest)) && inVolume.mLargest > largest) {
        throw Failure("ingest: \"" + inVolume.mLargestName + "\" is " + FormatSize(inVolume.mLargest)
                          + ", but files at \"" + shown + "\" are limited to " + FormatSize(largest)
                          + "; nothing was begun",
                      kExitNoSpace);
    }
}

} // namespace

IngestPlan MakePlan(IngestListing inListing, const IngestPlanRequest& inRequest)
{
    return Planner(std::move(inListing), inRequest).Make();
}

void CheckFreeSpace(const IngestPlan& inPlan, const IngestRoots& inRoots, ReservedSpace& ioReserved)
{
    for (const IngestVolume& volume : inPlan.mVolumes) {
        CheckFreeSpaceOf(volume, inRoots, ioReserved[volume.mVolume]);
    }
    for (const IngestVolume& volume : inPlan.mVolumes) {
        ioReserved[volume.mVolume] += static_cast<std::int64_t>(volume.mBytes);
    }
}

std::uint64_t FreeRoomOf(const IngestVolume& inVolume, const IngestRoots& inRoots)
{
    return ORL::DiskUtils::GetFreeSpaceFromPath(Measured(inVolume, inRoots).mPath);
}

} // namespace orl
