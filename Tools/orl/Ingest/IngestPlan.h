// What an ingest is going to do, found out before it does anything.
#pragma once

#include "IngestListing.h"
#include "IngestManifest.h"
#include "IngestRecord.h"
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

struct IngestItem
{
    enum State {
        kToCopy,         // nothing has its name at the destination
        kToCheck,        // a file of its size has: it may be the same one
        kToReplace,      // another file has, and the user wants it replaced
        kVerifiedBefore, // an earlier run has acknowledged it, and size and time are those of the source
    };

    std::string mName; // below the root, "/" between folders, as bytes of the host
    std::uint64_t mSize = 0;
    std::uint64_t mAllocated = 0; // fewer bytes than the size where the source has holes
    unsigned __int64 mTime = 0;
    State mState = kToCopy;
    std::optional<EntryIdentity> mEarlier; // the file that has its name at the destination
};

/// The bytes and files to be written to one volume.
struct IngestVolume
{
    std::uint64_t mVolume = 0;
    std::string mFolder; // a folder of the destination that is there
    std::uint64_t mBytes = 0;
    std::uint64_t mLargest = 0;
    std::string mLargestName;
};

struct IngestPlan
{
    std::vector<IngestItem> mItems;    // by name
    std::vector<std::string> mFolders; // of the destination, that are to be made, each after the one above it
    std::vector<IngestVolume> mVolumes;
    std::vector<IngestTrouble> mTroubles;
    std::set<EntryIdentity> mSourceFolders;
    std::uint64_t mBytesToPass = 0; // through memory: each byte to copy is read here and there
};

struct IngestPlanRequest
{
    const IngestRoots& mRoots;
    const std::string& mManifestName;
    const IngestManifest& mManifest;
    IngestRecord* mRecord = nullptr; // null where there is no destination yet
    bool mReplaces = false;
    std::function<bool()> mIsStopped;
};

/// Looks at what is at the destination already. Throws Failure where the source holds a file of the manifest's name or
/// no file at all.
IngestPlan MakePlan(IngestListing inListing, const IngestPlanRequest& inRequest);

/// Bytes that other destinations of this run will write, by volume.
using PromisedRoom = std::map<std::uint64_t, std::uint64_t>;

/// Throws Failure where a volume of the destination has no room for all that is to be written, or its file system none
/// for so large a file. Otherwise the room is promised.
void CheckRoom(const IngestPlan& inPlan, const IngestRoots& inRoots, PromisedRoom& ioPromised);

} // namespace orl
