// The output at the end of a verification.
#pragma once

#include "VerifyFolder.h"

#include <ostream>
#include <string>
#include <vector>

namespace orl {

// Exit codes of verify in addition to those of ingest.
inline constexpr int kExitMissing = 10; // a listed file is missing
inline constexpr int kExitNew = 11;     // a file is not in the list

/// Prints one line of totals for each folder.
void PrintTotals(std::ostream& ioStream, const std::vector<VerifyOutcome>& inOutcomes);

/// Prints one JSON object per line for each file, and one with the totals after the files of each folder.
void PrintJsonLines(std::ostream& ioStream, const std::vector<VerifyOutcome>& inOutcomes);

/// Parses the name of a state as the JSON writes it. Returns false if there is no such state.
bool FindState(const std::string& inName, VerifiedFile::State& outState);

/// Returns a line for each file that is not as listed, and for each folder's failures, in folder order.
std::vector<IngestTrouble> TroublesOf(const std::vector<VerifyOutcome>& inOutcomes);

/// Returns the exit code of the worst failure; 0 if the list is empty.
int WorstExitCode(const std::vector<IngestTrouble>& inTroubles);

} // namespace orl
