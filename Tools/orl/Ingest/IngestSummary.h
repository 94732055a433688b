// What an ingest shows at its end.
#pragma once

#include "IngestDestinations.h"

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

/// The table, which leaves out the files behind the 24th, and the sums of each destination.
void PrintSummary(const std::vector<IngestDestination>& inDestinations, const NamedRate& inRate,
                  const std::string& inManifestName);

/// All troubles. With several destinations each line names its own, and a trouble that all share is listed once.
std::vector<IngestTrouble> TroublesOf(const std::vector<IngestDestination>& inDestinations);

} // namespace orl
