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

/// Returns the files whose names the destination's volume treats as equal to an earlier file's name. Compares only
/// names that differ only in case. Tests them in a temporary folder that it creates on the destination's volume, and
/// then deletes.
std::set<std::string> FindCollisions(const std::vector<ListedFile>& inFiles, const IngestRoots& inRoots,
                                     IngestRecord* ioRecord);

} // namespace orl
