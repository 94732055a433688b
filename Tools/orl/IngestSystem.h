// What an ingest needs of the system besides the library: times that are kept, and contents that are on disk for sure.
// Each gives false where the system refuses.
#pragma once

#include <ORLFile.h>
#include <tvxcore/String.h>

namespace orl {

/// Sets the last-write time of a file that is open to write, in the library's units.
bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime);

/// Waits until a file's contents are on disk.
bool FlushFile(ORL::File& ioFile);

/// For a file among many whose volume is flushed afterwards: does at once what FlushVolume cannot do for all of them.
bool SettleFile(ORL::File& ioFile);

/// Waits until everything on the volume of this folder is on disk: contents of settled files, names and folders.
bool FlushVolume(const UTF16String& inFolder);

} // namespace orl
