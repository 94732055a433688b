// The result of an ingest for other programs.
#pragma once

#include "../IngestDestinations.h"
#include "IngestErase.h"

#include <ostream>
#include <vector>

namespace orl {

/// Prints one JSON object per line: for each file at each destination, for each excluded entry, and a summary.
void PrintIngestJson(std::ostream& ioStream, const std::vector<IngestDestination>& inDestinations,
                     const IngestListing& inListing, const EraseVerdict& inVerdict);

} // namespace orl
