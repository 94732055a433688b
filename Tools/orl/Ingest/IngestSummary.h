// What an ingest shows at its end.
#pragma once

#include "IngestRun.h"

#include <string>

namespace orl {

/// A frame rate by the name that people have for it ("25", "29.97df"), and how its timecode is written.
struct NamedRate;

/// Throws Failure for a name that is none.
const NamedRate& FindRate(const std::string& inName);

/// All names, for a help text.
std::string RateNames();

/// The timecode of a file's length, empty for a file that has none.
std::string TimecodeLength(const UTF16String& inPath, const NamedRate& inRate);

/// The table, which leaves out the files behind the 24th, and the sums.
void PrintSummary(const IngestOutcome& inOutcome, const IngestRoots& inRoots, std::size_t inFiles,
                  const NamedRate& inRate, const std::string& inManifest);

} // namespace orl
