// Names that the source tells apart and the destination does not.
#pragma once

#include "IngestListing.h"
#include "IngestRecord.h"
#include "IngestRoots.h"

#include <set>
#include <string>
#include <vector>

namespace orl {

/// Finds the files that would have the name of another one at the destination, all but the first of each name. Only
/// names that differ in case alone are looked at; whether the volume tells them apart is asked of the volume itself, in
/// a folder that is made for it and removed.
std::set<std::string> FindCollisions(const std::vector<ListedFile>& inFiles, const IngestRoots& inRoots,
                                     IngestRecord* ioRecord);

} // namespace orl
