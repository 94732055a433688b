#include "IngestErase.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <map>
#include <set>

namespace orl {

namespace {

std::string Counted(std::size_t inCount, const char* inWhat)
{
    return std::to_string(inCount) + " " + inWhat + (inCount == 1 ? "" : "s");
}

bool HasAny(const std::vector<IngestDestination>& inDestinations, bool IngestOutcome::*inWhat)
{
    return std::any_of(inDestinations.begin(), inDestinations.end(),
                       [inWhat](const IngestDestination& inDestination) { return inDestination.mOutcome.*inWhat; });
}

// Returns why the result of the run makes erasing unsafe, or an empty string.
std::string WhyTheRunIsIncomplete(const IngestListing& inBefore, const std::vector<IngestDestination>& inDestinations)
{
    if (HasAny(inDestinations, &IngestOutcome::mIsStopped)) {
        return "the ingest was stopped";
    }
    if (HasAny(inDestinations, &IngestOutcome::mIsDiskUnresponsive)) {
        return "a disk does not answer";
    }
    return inBefore.mTroubles.empty() ? "" : "some of it cannot be read";
}

std::string WhyCopiesAreMissing(const IngestListing& inBefore, const std::vector<IngestDestination>& inDestinations,
                                std::size_t inCopies)
{
    std::map<std::string, std::size_t> copies;
    for (const IngestDestination& destination : inDestinations) {
        for (const IngestOutcome::Row& row : destination.mOutcome.mRows) {
            ++copies[row.mItem->mName];
        }
    }
    std::size_t lacking = 0;
    std::string first;
    for (const ListedFile& file : inBefore.mFiles) {
        if (copies[file.mName] < inCopies) {
            first = lacking++ == 0 ? file.mName : std::min(first, file.mName);
        }
    }
    if (lacking == 0) {
        return "";
    }
    return Counted(lacking, "file") + (lacking == 1 ? " (" : " (the first is ") + "\"" + first + "\")"
           + (lacking == 1 ? " is" : " are") + " verified at fewer than " + Counted(inCopies, "destination");
}

std::map<std::string, EntryStatus> ByName(const std::vector<ListedFile>& inFiles)
{
    std::map<std::string, EntryStatus> files;
    for (const ListedFile& file : inFiles) {
        files[file.mName] = file.mStatus;
    }
    return files;
}

// An excluded entry has no copy, whether or not it existed before the ingest.
std::string WhatWasExcluded(const IngestListing& inListing)
{
    std::size_t count = 0;
    std::string first;
    for (const ExcludedEntry& entry : inListing.mExcluded) {
        if (!entry.mPattern.empty()) {
            first = count++ == 0 ? entry.mName : first;
        }
    }
    if (count == 0) {
        return "";
    }
    return (count == 1 ? "1 entry (" : std::to_string(count) + " entries (the first is ") + "\"" + first + "\")"
           + (count == 1 ? " is" : " are") + " excluded by --exclude and not copied";
}

std::string SystemFoldersOf(const IngestListing& inListing)
{
    std::string names;
    for (const ExcludedEntry& entry : inListing.mExcluded) {
        if (entry.mPattern.empty()) {
            names += (names.empty() ? "\"" : ", \"") + entry.mName + "\"";
        }
    }
    return names;
}

std::string WhatChanged(const IngestListing& inBefore, const IngestListing& inAfter)
{
    if (!inAfter.mTroubles.empty()) {
        return "it could not be listed again";
    }
    const std::map<std::string, EntryStatus> before = ByName(inBefore.mFiles);
    std::map<std::string, EntryStatus> after = ByName(inAfter.mFiles);
    for (const auto& [name, status] : before) {
        const auto found = after.find(name);
        if (found == after.end()) {
            return "\"" + name + "\" was removed during the ingest";
        }
        if (found->second.mSize != status.mSize || found->second.mTime != status.mTime) {
            return "\"" + name + "\" changed during the ingest";
        }
        after.erase(found);
    }
    if (!after.empty()) {
        return "\"" + after.begin()->first + "\" was added during the ingest";
    }
    const auto hasSameName = [](const ListedFolder& inLeft, const ListedFolder& inRight) {
        return inLeft.mName == inRight.mName;
    };
    return std::equal(inBefore.mFolders.begin(), inBefore.mFolders.end(), inAfter.mFolders.begin(),
                      inAfter.mFolders.end(), hasSameName)
               ? ""
               : "its folders changed during the ingest";
}

// outAfter receives the second listing.
std::string WhyTheSourceChanged(const IngestListing& inBefore, const IngestRoots& inRoots,
                                const std::function<bool()>& inIsStopped, const IngestExclusions& inExclusions,
                                IngestListing& outAfter)
{
    try {
        outAfter = ListSource(inRoots, inIsStopped, inExclusions);
        return WhatChanged(inBefore, outAfter);
    } catch (const Failure& failure) {
        return failure.ExitCode() == kExitStopped ? "the ingest was stopped" : "it could not be listed again";
    }
}

} // namespace

EraseVerdict JudgeErasing(const IngestListing& inBefore, const std::vector<IngestDestination>& inDestinations,
                          std::size_t inCopies, const std::function<bool()>& inIsStopped,
                          const IngestExclusions& inExclusions)
{
    IngestListing after;
    std::string reason = WhyTheRunIsIncomplete(inBefore, inDestinations);
    if (reason.empty()) {
        reason = WhyCopiesAreMissing(inBefore, inDestinations, inCopies);
    }
    if (reason.empty()) {
        reason = WhyTheSourceChanged(inBefore, inDestinations.front().mRoots, inIsStopped, inExclusions, after);
    }
    const std::string verified = " files (" + std::to_string(inBefore.mFiles.size()) + ") are verified at "
                                 + Counted(inCopies, "destination")
                                 + (inCopies < inDestinations.size() ? " or more" : "");
    if (reason.empty()) {
        reason = WhatWasExcluded(after);
        reason += reason.empty() ? "" : "; all other" + verified;
    }
    const auto lineOf = [](const std::string& inText) { return WithoutControlCharacters(inText) + "."; };
    if (!reason.empty()) {
        return {false, lineOf("Not safe to erase the source: " + reason)};
    }
    const std::string folders = SystemFoldersOf(after);
    return {true, lineOf("Safe to erase the source: all of its" + verified
                         + (folders.empty() ? "" : "; folders of the system (" + folders + ") are not copied"))};
}

} // namespace orl
