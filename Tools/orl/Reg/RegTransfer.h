// orl reg export | import
#pragma once

#include "RegKeyName.h"

#include <string>

namespace orl {

/// Writes a key and all below it: to a file, or to standard output if inFile is empty, as UTF-8 where that is a
/// terminal.
void ExportRegKey(const RegKeyName& inKey, const std::string& inFile);

/// Makes the changes of a file, or with inIsDryRun only shows them. A file with a wrong line changes nothing.
void ImportRegFile(const std::string& inFile, bool inIsDryRun);

} // namespace orl
