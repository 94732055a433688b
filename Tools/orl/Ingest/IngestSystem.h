// What an ingest needs of the system besides the library: listings that tell when they break off, times that are kept, and
// contents that are on disk for sure. Each gives false where the system refuses.
#pragma once

#include <ORLFile.h>
#include <cstdint>
#include <string>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// Tells one folder from all others that are there at the same time.
struct FolderIdentity
{
    std::uint64_t mVolume = 0;
    std::uint64_t mFolder = 0;

    bool operator==(const FolderIdentity& inOther) const
    {
        return mVolume == inOther.mVolume && mFolder == inOther.mFolder;
    }
};

/// A link stands for the folder that it leads to.
bool IdentifyFolder(const UTF16String& inFolder, FolderIdentity& outIdentity);

/// The paths of all that a folder holds, as HostTextOf gives them, in no order. False also where the listing breaks off.
bool ListFolder(const UTF16String& inFolder, std::vector<std::string>& outPaths);

/// Sets the last-write time of a file that is open to write, in the library's units.
bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime);

/// Waits until a file's contents are on disk.
bool FlushFile(ORL::File& ioFile);

/// For a file that belongs to a group: does at once what FlushGroup cannot do for all of them.
bool SettleFile(ORL::File& ioFile);

/// Waits until settled files are on disk with their names and the folders that lead to them from inFolder on.
bool FlushGroup(const UTF16String& inFolder, const std::vector<UTF16String>& inFiles);

} // namespace orl
