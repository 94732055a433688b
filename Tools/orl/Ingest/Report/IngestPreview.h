// The work that an ingest would do, determined without changing anything.
#pragma once

#include "../IngestDestinations.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orl {

struct IngestPreview
{
    std::vector<std::vector<std::string>> mNamesAlike; // groups of names that are equal on a case-insensitive volume
    std::vector<ExcludedEntry> mExcluded;
    std::map<std::uint64_t, std::uint64_t> mLeftovers; // bytes of leftovers that a run would delete first, by volume
};

/// Fills the plan of each destination, and the failures of its outcome. A failure at one destination does not stop the
/// others. Throws Failure if the source cannot be listed or the user stops.
IngestPreview PreviewIngest(std::vector<IngestDestination>& ioDestinations, const std::string& inManifestName,
                            const IngestSettings& inSettings, const std::function<bool()>& inIsStopped);

/// Prints the files and their states, the sums, and the free space on each volume.
void PrintPreview(const IngestPreview& inPreview, const std::vector<IngestDestination>& inDestinations);

} // namespace orl
