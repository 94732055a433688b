// What an ingest needs of the system besides the library: times that are kept, and contents that are on disk for sure.
// Each gives false where the system refuses.
#pragma once

#include <ORLFile.h>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// Sets the last-write time of a file that is open to write, in the library's units.
bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime);

/// Waits until a file's contents are on disk.
bool FlushFile(ORL::File& ioFile);

/// For a file that belongs to a group: does at once what FlushGroup cannot do for all of them.
bool SettleFile(ORL::File& ioFile);

/// Waits until settled files are on disk with their names and the folders that lead to them from inFolder on.
bool FlushGroup(const UTF16String& inFolder, const std::vector<UTF16String>& inFiles);

} // namespace orl
