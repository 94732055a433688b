// What an ingest is going to do, found out before it does anything.
#pragma once

#include "IngestManifest.h"
#include "IngestSystem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// The two folders, in extended form, and as the user wrote them.
struct IngestRoots
{
    UTF16String mSource;
    UTF16String mDestination;
    std::string mShownSource;
    std::string mShownDestination;
    std::optional<FolderIdentity> mSourceIdentity;      // as they were at the start;
    std::optional<FolderIdentity> mDestinationIdentity; // none for a destination that is still to be made
};

/// Whether the source is not there any more: another folder has its place, as where a volume has left its mount point, or
/// it held something and holds nothing now, or cannot be listed.
bool IsSourceGone(const IngestRoots& inRoots, bool inHeldSomething);

bool IsDestinationGone(const IngestRoots& inRoots);

struct IngestItem
{
    enum State {
        kToCopy,         // nothing has its name at the destination
        kToCheck,        // a file of its size has: it may be the same one
        kToReplace,      // another file has, and the user wants it replaced
        kVerifiedBefore, // an earlier run has acknowledged it, and size and time are those of the source
    };

    UTF16String mSource;
    UTF16String mTarget;
    std::string mName; // below the root, "/" between folders, as bytes of the host
    std::uint64_t mSize = 0;
    State mState = kToCopy;
};

/// What went wrong with one file or folder: a line for the user, and the exit code that it means.
struct IngestTrouble
{
    std::string mText;
    int mExitCode;
};

struct IngestPlan
{
    std::vector<IngestItem> mItems; // by name
    std::vector<UTF16String> mFolders; // of the destination, each behind the one above it
    std::vector<UTF16String> mLeftovers; // unfinished files of earlier runs
    std::vector<IngestTrouble> mTroubles;
    std::uint64_t mBytesToWrite = 0;
    std::uint64_t mBytesToPass = 0; // through memory: each byte to copy is read here and there
};

/// Takes the two arguments. Throws Failure where the source is no folder, or the destination lies inside it.
IngestRoots MakeRoots(const std::string& inSource, const std::string& inDestination);

/// Lists the source and looks at what is at the destination already. Throws Failure where the source goes meanwhile, or
/// holds a file of the manifest's name.
IngestPlan MakePlan(const IngestRoots& inRoots, const std::string& inManifestName, const IngestManifest& inManifest,
                    bool inReplaces);

/// Throws Failure where the destination has no room for all that is to be written, or its file system none for so
/// large a file.
void CheckRoom(const IngestPlan& inPlan, const IngestRoots& inRoots);

/// The name of an unfinished file beside its target: always the same for the same one, so that a second run finds it.
UTF16String TemporaryPathOf(const IngestItem& inItem);

} // namespace orl
