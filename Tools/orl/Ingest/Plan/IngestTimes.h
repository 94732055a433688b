// Last-write times on file systems that store them less precisely than the file system of the source.
#pragma once

#include "../IngestSystem.h"
#include "../Record/IngestRecord.h"

#include <string>

namespace orl {

/// Returns what the file system of a folder stores for a last-write time, or 0 if that cannot be determined. Creates a
/// file in the folder, queries its time and deletes it. inFolder is the name of inHeld below the destination.
unsigned __int64 StoredTimeFor(unsigned __int64 inTime, const HeldFolder& inHeld, const std::string& inFolder,
                               IngestRecord& ioRecord);

} // namespace orl
