// Joins the results of jobs that verified the parts of one list.
#pragma once

#include "VerifyFolder.h"

#include <string>
#include <vector>

namespace orl {

/// Reads the output of "orl verify --part K/N --json" from each file and returns one outcome for the whole list.
/// Throws Failure if a file is not the complete output of that command, if the job was stopped, if a part is missing or
/// present twice, or if the parts do not have the same list, folder and division.
VerifyOutcome MergeParts(const std::vector<std::string>& inFiles);

} // namespace orl
