// Suggestions for mistyped words.
#pragma once

#include <string>
#include <vector>

namespace orl {

/// Returns the choice that the user probably meant: the one with the fewest changed, missing, additional or swapped
/// characters, at most one for every three characters, or the only choice that begins with the word. Returns an empty
/// string if there is none.
std::string NearestOf(const std::string& inWord, const std::vector<std::string>& inChoices);

/// Returns "; did you mean \"info\"?", or an empty string.
std::string SuggestionFor(const std::string& inWord, const std::vector<std::string>& inChoices);

} // namespace orl
