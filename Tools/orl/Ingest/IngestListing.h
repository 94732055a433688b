// What the source holds, looked at twice: the library's listing ends without a word where the system refuses to go on,
// and a file that is not listed would be left behind in silence.
#pragma once

#include <tvxcore/String.h>
#include <vector>

namespace orl {

struct IngestListing
{
    std::vector<UTF16String> mFiles;
    std::vector<UTF16String> mFolders; // each behind the one above it
    std::vector<UTF16String> mBroken;  // folders that may hold more than is listed here
};

/// Lists a folder with all below it. Links are followed, but one that leads back to a folder above it is listed without
/// contents. Throws ORL::Exception where the folder is none.
IngestListing ListTwice(const UTF16String& inFolder);

} // namespace orl
