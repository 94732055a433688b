// A whole ingest, to one destination or to several from one read of the source.
#pragma once

#include "IngestRun.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace orl {

struct IngestDestination
{
    IngestRoots mRoots;
    IngestPlan mPlan;
    IngestOutcome mOutcome; // its rows lead into the plan
};

/// What the caller of an ingest is asked and told.
struct IngestWatcher
{
    std::function<bool()> mIsStopped; // called on any thread, all the time

    // Called on the caller's thread: once when work begins, then ten times a second. Sums over all destinations.
    std::function<void(std::uint64_t inBytesToPass, std::size_t inFiles)> mOnPlanned = {}; // may be empty
    std::function<void(std::uint64_t inBytesPassed, std::size_t inFilesDone)> mShow;

    // Called on any thread; may be empty.
    std::function<void(std::size_t inDestination, IngestStep, const IngestItem&)> mOnStep = {};
};

/// Parses the arguments. Throws Failure if one is invalid or if a destination lies inside another.
std::vector<IngestDestination> MakeDestinations(const std::string& inSource,
                                                const std::vector<std::string>& inDestinations);

/// Checks everything before anything changes, then serves all destinations at once. A failure at one destination stops
/// no other. Throws Failure if nothing was begun: the source holds no file, the user stops the planning, or the only
/// destination is refused. Returns the number of bytes read from the source.
std::uint64_t Ingest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                     const IngestSettings& inSettings, const IngestWatcher& inWatcher);

} // namespace orl
