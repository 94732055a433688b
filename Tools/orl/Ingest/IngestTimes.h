// Last-write times on a file system that may keep less of them than the source has.
#pragma once

#include "IngestRecord.h"
#include "IngestSystem.h"

#include <string>

namespace orl {

/// What the file system of a folder makes of a last-write time, found out by a file that is made for it there, and
/// deleted. inFolder is the held folder's name below the destination. 0 where it cannot be found out.
unsigned __int64 TimeThatIsKept(unsigned __int64 inTime, const HeldFolder& inHeld, const std::string& inFolder,
                                IngestRecord& ioRecord);

} // namespace orl
