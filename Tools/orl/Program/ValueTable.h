// The kinds of values that options and arguments accept, by the value names in the help.
#pragma once

#include <string>
#include <vector>

namespace orl {

enum class ValueKind { kFree, kFile, kFolder, kWord, kWordList, kCommand };

struct ValueEntry
{
    ValueKind mKind = ValueKind::kFree;
    std::vector<std::string> mWords; // the choices of kWord, and of kWordList (separated by commas)
};

/// Returns kFree for a name that is not in the table.
ValueEntry ValueOf(const std::string& inName);

} // namespace orl
