// The plan of an ingest, made before anything is changed.
#pragma once

#include "../Record/IngestManifest.h"
#include "../Record/IngestRecord.h"
#include "IngestListing.h"
#include "IngestRoots.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// The reason in the error line for a name conflict.
constexpr char kTakenByOtherFile[] =
    "the destination has a different file of that name, which was kept (rerun with --replace to replace it)";

struct IngestItem
{
    enum State {
        kToCopy,         // the destination has no entry with its name
        kToCheck,        // a file with the same name and size exists; the contents must be compared
        kToReplace,      // a different file with the same name exists, and the user wants it replaced
        kVerifiedBefore, // the manifest of an earlier run lists the file; size and time equal the source's;
                         // the permissions too, if they are kept
    };

    std::string mName; // path relative to the source, "/" between folders, raw bytes
    std::uint64_t mSize = 0;
    std::uint64_t mAllocated = 0; // less than the size if the source has holes
    unsigned __int64 mTime = 0;
    unsigned mPermissions = 0;
    State mState = kToCopy;
    std::optional<EntryIdentity> mEarlier; // the file with the same name at the destination
};

/// What a run will write to one volume.
struct IngestVolume
{
    std::uint64_t mVolume = 0;
    std::string mFolder; // an existing folder of the destination on this volume
    std::uint64_t mBytes = 0;
    std::uint64_t mLargest = 0;
    std::string mLargestName;
};

struct IngestPlan
{
    std::vector<IngestItem> mItems;    // sorted by name
    std::vector<std::string> mFolders; // folders to create at the destination, each after its parent
    std::vector<ListedFolder> mTree;   // source folders that the destination has or will have, each after its parent
    std::set<std::string> mIncomplete; // folders that contain entries of the source that cannot be listed or copied
    std::vector<IngestVolume> mVolumes;
    std::vector<IngestTrouble> mTroubles;
    std::set<EntryIdentity> mSourceFolders;
    std::uint64_t mBytesToRead = 0; // each byte to copy counts twice: read from the source and read back
};

struct IngestPlanRequest
{
    const IngestRoots& mRoots;
    const std::string& mManifestName;
    const IngestManifest& mManifest;
    IngestRecord* mRecord = nullptr; // null if the destination does not exist yet
    bool mReplaces = false;
    bool mKeepsPermissions = false;
    std::function<bool()> mIsStopped;
    bool mIsDryRun = false; // creates no test files for names and times at the destination
};

/// Compares the listing with the contents of the destination. Throws Failure if the source holds no file, or a file
/// with the manifest's name.
IngestPlan MakePlan(IngestListing inListing, const IngestPlanRequest& inRequest);

/// By volume, the bytes that the destinations checked so far will write; in a dry run, minus leftovers to be deleted.
using ReservedSpace = std::map<std::uint64_t, std::int64_t>;

/// Returns the free bytes of a volume.
std::uint64_t FreeRoomOf(const IngestVolume& inVolume, const IngestRoots& inRoots);

/// Throws Failure if a volume of the destination lacks free space for its files, or if a file exceeds the file system's
/// limit. Otherwise adds the bytes to ioReserved.
void CheckFreeSpace(const IngestPlan& inPlan, const IngestRoots& inRoots, ReservedSpace& ioReserved);

} // namespace orl
