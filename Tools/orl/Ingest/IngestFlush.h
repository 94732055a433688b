// The contents and names of ingested files, on disk for sure.
#pragma once

#include "IngestRoots.h"

#include <string>
#include <vector>

namespace orl {

/// Waits until files that are settled are on disk with their names and the folders that lead to them from the
/// destination on, on whatever volumes they are. Returns false where the system refuses.
bool FlushGroup(const IngestRoots& inRoots, const std::vector<std::string>& inNames);

} // namespace orl
