#include "Suggestion.h"

#include <algorithm>

namespace orl {

namespace {

/// Returns the number of edits between two words: insertions, deletions, replacements, and swaps of neighbours.
std::size_t EditDistance(const std::string& inLeft, const std::string& inRight)
{
    std::vector<std::vector<std::size_t>> distance(inLeft.size() + 1, std::vector<std::size_t>(inRight.size() + 1));
    for (std::size_t i = 0; i <= inLeft.size(); ++i) {
        for (std::size_t j = 0; j <= inRight.size(); ++j) {
            if (i == 0 || j == 0) {
                distance[i][j] = i + j;
                continue;
            }
            const bool isSame = inLeft[i - 1] == inRight[j - 1];
            distance[i][j] =
                std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, distance[i - 1][j - 1] + (isSame ? 0 : 1)});
            const bool isSwapped = i > 1 && j > 1 && inLeft[i - 1] == inRight[j - 2] && inLeft[i - 2] == inRight[j - 1];
            if (isSwapped) {
                distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
            }
        }
    }
    return distance[inLeft.size()][inRight.size()];
}

// A longer word gets no suggestion, because finding one would take too long.
constexpr std::size_t kMaxWord = 64;

} // namespace

std::string NearestOf(const std::string& inWord, const std::vector<std::string>& inChoices)
{
    if (inWord.empty() || inWord.size() > kMaxWord) {
        return std::string();
    }
    const auto beginsWithWord = [&inWord](const std::string& inChoice) {
        return inChoice.compare(0, inWord.size(), inWord) == 0;
    };
    if (std::count_if(inChoices.begin(), inChoices.end(), beginsWithWord) == 1) {
        return *std::find_if(inChoices.begin(), inChoices.end(), beginsWithWord);
    }
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, inWord.size() / 3) + 1;
    for (const std::string& choice : inChoices) {
        const std::size_t edits = EditDistance(inWord, choice);
        if (edits < least && edits < choice.size()) {
            least = edits;
            nearest = choice;
        }
    }
    return nearest;
}

std::string SuggestionFor(const std::string& inWord, const std::vector<std::string>& inChoices)
{
    const std::string nearest = NearestOf(inWord, inChoices);
    return nearest.empty() ? std::string() : "; did you mean \"" + nearest + "\"?";
}

} // namespace orl
