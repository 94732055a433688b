// Waits until ingested files and their names are on disk.
#pragma once

#include "Plan/IngestRoots.h"

#include <string>
#include <vector>

namespace orl {

/// Waits until the files, their names and all folders from the destination down to them are on disk, whichever volumes
/// they are on. Each file must have been passed to PrepareSync. Returns false if the system reports an error.
bool FlushGroup(const IngestRoots& inRoots, const std::vector<std::string>& inNames);

} // namespace orl
