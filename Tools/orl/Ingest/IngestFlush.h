// Waits until ingested files and their names are on disk.
#pragma once

#include "Plan/IngestRoots.h"

#include <string>
#include <vector>

namespace orl {

/// Waits until files that were passed to PrepareSync are on disk, with their names and all folders from the destination
/// down to them, on whatever volumes they are. Returns false if the system reports an error.
bool FlushGroup(const IngestRoots& inRoots, const std::vector<std::string>& inNames);

} // namespace orl
