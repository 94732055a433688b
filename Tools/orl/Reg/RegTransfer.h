// orl reg export | import
#pragma once

#include "RegKeyName.h"

#include <string>

namespace orl {

/// Writes a key and everything below it to a file, or to standard output if inFile is empty. Output to a terminal is
/// UTF-8.
void ExportRegKey(const RegKeyName& inKey, const std::string& inFile);

/// Applies the changes of a file. If a line is invalid, nothing is changed.
void ImportRegFile(const std::string& inFile);

/// Prints the changes that ImportRegFile would make.
void ShowRegImport(const std::string& inFile, bool inAsJson);

} // namespace orl
