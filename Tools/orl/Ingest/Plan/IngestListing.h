// The listing of the source.
#pragma once

#include "IngestRoots.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace orl {

/// A failure at one file or folder: the error line and the exit code.
struct IngestTrouble
{
    std::string mText;
    int mExitCode;
};

struct ListedFile
{
    std::string mName;
    EntryStatus mStatus; // a link has the status of its target
};

struct IngestListing
{
    std::vector<ListedFile> mFiles;
    std::vector<std::string> mFolders;    // each after its parent
    std::set<EntryIdentity> mIdentities;  // identities of all folders, the source included
    std::vector<IngestTrouble> mTroubles; // one for each entry that could not be listed
};

/// Lists the source and everything below it. Opens folders one name at a time, so that on Linux neither depth nor path
/// length is limited. Follows links, but lists a link to a folder above it without contents. Polls inIsStopped.
/// Throws Failure if the source is gone (kExitDisappeared) or inIsStopped returns true (kExitStopped).
IngestListing ListSource(const IngestRoots& inRoots, const std::function<bool()>& inIsStopped);

} // namespace orl
