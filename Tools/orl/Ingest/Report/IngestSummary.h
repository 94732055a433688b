// The output at the end of an ingest.
#pragma once

#include "../IngestDestinations.h"

#include <string>

namespace orl {

/// A frame rate with its usual name ("25", "29.97df") and its timecode format.
struct NamedRate;

/// Throws Failure if no frame rate has that name.
const NamedRate& FindRate(const std::string& inName);

/// Returns all names, for the help output.
std::string RateNames();

/// Returns the length of a WAV file as timecode, empty for any other file.
std::string TimecodeLength(const UTF16String& inPath, const NamedRate& inRate);

/// Prints a table of the first 24 files, and the totals of each destination.
void PrintSummary(const std::vector<IngestDestination>& inDestinations, const NamedRate& inRate,
                  const std::string& inManifestName);

/// Prints one line for each pattern of the user with the number of entries that the pattern excludes, and one for the
/// system folders that were left out.
void PrintExcluded(const std::vector<ExcludedEntry>& inExcluded, const IngestExclusions& inExclusions);

/// Returns all failures. With several destinations each line names its destination, and a failure that all destinations
/// share is listed once.
std::vector<IngestTrouble> TroublesOf(const std::vector<IngestDestination>& inDestinations);

} // namespace orl
