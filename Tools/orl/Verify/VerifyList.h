// A list of checksums as sha256sum writes it. Any program may have written the list.
#pragma once

#include "Ingest/Plan/IngestRoots.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orl {

struct VerifyList
{
    struct Line
    {
        std::string mName;   // name in raw bytes
        std::string mDigest; // 64 lower-case hexadecimal digits
    };

    std::vector<Line> mLines;
    std::size_t mOtherLines = 0; // checksums in a different algorithm or format
    EntryStatus mStatus;         // status of the list's file
    std::string mDigest;         // SHA-256 of the list's file
};

/// Reads the list with that name in a folder. Throws Failure if the list is missing, is a link, is not a checksum list,
/// or is too long. A large file that is not a list needs little memory.
VerifyList ReadVerifyList(const IngestRoots& inRoots, const std::string& inName);

/// Returns the name with "/" between folders and without "." parts, or an empty string if it does not name a file below
/// the list's folder: an absolute path, a ".." part, or a part that the system would split again.
std::string NameBelowFolder(const std::string& inListed);

} // namespace orl
