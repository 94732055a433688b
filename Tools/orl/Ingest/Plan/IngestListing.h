// The listing of the source.
#pragma once

#include "IngestExclusions.h"
#include "IngestRoots.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace orl {

/// A failure at one file or folder: the error message and the exit code.
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

struct ListedFolder
{
    std::string mName;
    EntryStatus mStatus; // a link has the status of its target
};

/// An entry that was left out. Nothing below an excluded folder is listed.
struct ExcludedEntry
{
    std::string mName;
    std::string mPattern; // of the user; empty for a system folder
};

struct IngestListing
{
    std::vector<ListedFile> mFiles;
    std::vector<ListedFolder> mFolders;   // each after its parent
    std::vector<ExcludedEntry> mExcluded; // by name
    std::set<EntryIdentity> mIdentities;  // identities of all listed and excluded folders, the source included
    std::vector<IngestTrouble> mTroubles; // one for each entry that could not be listed
    std::set<std::string> mIncomplete;    // names of the folders that contain these entries
};

/// Lists the source and everything below it. Opens folders one name at a time, so that on Linux neither depth nor path
/// length is limited. Follows links, but lists no contents for a link to a folder above it. Polls inIsStopped.
/// Leaves out what inExclusions matches. Throws Failure if the source is gone (kExitDisappeared) or inIsStopped returns
/// true (kExitStopped).
IngestListing ListSource(const IngestRoots& inRoots, const std::function<bool()>& inIsStopped,
                         const IngestExclusions& inExclusions = IngestExclusions());

} // namespace orl
