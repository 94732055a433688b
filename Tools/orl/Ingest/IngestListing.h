// What the source holds.
#pragma once

#include "IngestRoots.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace orl {

/// What went wrong with one file or folder: a line for the user, and the exit code that it means.
struct IngestTrouble
{
    std::string mText;
    int mExitCode;
};

struct ListedFile
{
    std::string mName;
    EntryStatus mStatus; // of the file that a link leads to
};

struct IngestListing
{
    std::vector<ListedFile> mFiles;
    std::vector<std::string> mFolders;    // each after the one above it
    std::set<EntryIdentity> mIdentities;  // of all folders, the source itself among them
    std::vector<IngestTrouble> mTroubles; // what is not listed has a line here
};

/// Lists the source with all below it, through folders that are held, so no depth and no length of a path is too much.
/// Links are followed, but one that leads back to a folder above it is listed without contents. Throws Failure where
/// the source is gone, and kExitStopped where inIsStopped, which is asked all the time, says so.
IngestListing ListSource(const IngestRoots& inRoots, const std::function<bool()>& inIsStopped);

} // namespace orl
