// What the values of options and arguments are, by their names in the help.
#pragma once

#include <string>
#include <vector>

namespace orl {

enum class ValueKind { kFree, kFile, kFolder, kWord, kWordList, kCommand };

struct ValueEntry
{
    ValueKind mKind = ValueKind::kFree;
    std::vector<std::string> mWords; // of kWord, and of kWordList, where commas separate them
};

/// Returns kFree for a name that is not in the table.
ValueEntry ValueOf(const std::string& inName);

} // namespace orl
