// Names that differ at the source but are the same file at the destination.
#pragma once

#include "../Record/IngestRecord.h"
#include "IngestListing.h"
#include "IngestRoots.h"

#include <set>
#include <string>
#include <vector>

namespace orl {

/// Returns groups of names that differ only in case.
std::vector<std::vector<std::string>> FindNamesAlike(const std::vector<ListedFile>& inFiles);

/// Returns the files whose name at the destination would be that of another file: for each such name, all files but the
/// first. Considers only names that differ only in case. Creates a temporary folder on the destination's volume and
/// tries the names there.
std::set<std::string> FindCollisions(const std::vector<ListedFile>& inFiles, const IngestRoots& inRoots,
                                     IngestRecord* ioRecord);

} // namespace orl
