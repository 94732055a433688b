// Decides whether the source may be erased after an ingest.
#pragma once

#include "../IngestDestinations.h"
#include "../Plan/IngestListing.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace orl {

struct EraseVerdict
{
    bool mIsSafe = false;
    std::string mLine; // "Safe to erase the source: ..." or "Not safe to erase the source: ..."
};

/// Lists the source again and compares names, sizes and times with its listing before the ingest. The source is safe to
/// erase if nothing has changed, everything could be read, no pattern of the user excluded an entry, and each file is
/// acknowledged at inCopies destinations or more. Does not throw Failure.
EraseVerdict JudgeErasing(const IngestListing& inBefore, const std::vector<IngestDestination>& inDestinations,
                          std::size_t inCopies, const std::function<bool()>& inIsStopped,
                          const IngestExclusions& inExclusions = IngestExclusions());

} // namespace orl
