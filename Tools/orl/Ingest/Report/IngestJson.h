// The result of an ingest, or its plan, for other programs.
#pragma once

#include "../IngestDestinations.h"
#include "IngestErase.h"
#include "IngestPreview.h"

#include <ostream>
#include <vector>

namespace orl {

/// Prints one JSON object per line: one for each file at each destination, one for each excluded entry, and a summary.
void PrintIngestJson(std::ostream& ioStream, const std::vector<IngestDestination>& inDestinations,
                     const IngestListing& inListing, const EraseVerdict& inVerdict);

/// Prints one JSON object per line: for each file at each destination, for each destination with its volumes, for each
/// excluded entry, for each group of names that differ only in case, and a summary.
void PrintPreviewJson(std::ostream& ioStream, const IngestPreview& inPreview,
                      const std::vector<IngestDestination>& inDestinations);

} // namespace orl
