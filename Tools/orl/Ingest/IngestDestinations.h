// A complete ingest: copies one source, which is read once, to one or more destinations.
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
    IngestOutcome mOutcome; // its rows point to the items of mPlan
};

/// The callbacks of an ingest.
struct IngestWatcher
{
    std::function<bool()> mIsStopped; // polled on any thread

    // Called on the caller's thread: mOnPlanned once before the first file, then mShow ten times a second. The
    // arguments are sums over all destinations.
    std::function<void(std::uint64_t inBytesToRead, std::size_t inFiles)> mOnPlanned = {}; // may be empty
    std::function<void(std::uint64_t inBytesPassed, std::size_t inFilesDone)> mShow;

    // Called on any thread; may be empty.
    std::function<void(std::size_t inDestination, IngestStep, const IngestItem&)> mOnStep = {};
};

/// The source as an ingest found it.
struct IngestedSource
{
    IngestListing mListing;       // made before the first file was copied
    std::uint64_t mBytesRead = 0; // bytes read from the files of the source
};

/// Parses the arguments. Throws Failure if an argument is invalid or if a destination lies inside another destination.
std::vector<IngestDestination> MakeDestinations(const std::string& inSource,
                                                const std::vector<std::string>& inDestinations);

/// Checks each destination, then writes to all destinations at once. A failure at one destination does not stop the
/// others. Throws Failure if nothing was begun: the source contains no file, the user stops the planning, or the only
/// destination is rejected.
IngestedSource Ingest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                      const IngestSettings& inSettings, const IngestWatcher& inWatcher);

} // namespace orl
