// The line that shows how far a command is: written over, on a terminal alone, and never wider than the terminal, since a line
// that the terminal wraps cannot be written over.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// One piece of the line. Where there is not enough room for all, those of the highest rank go first; rank 0 never goes.
struct ProgressPart
{
    std::string mText;
    int mRank = 0;
};

/// The parts that fit into that many columns, three blanks between them, cut where not even rank 0 fits. Control characters
/// show as "?".
std::string FitProgress(const std::vector<ProgressPart>& inParts, std::size_t inColumns);

class ProgressLine
{
public:
    /// Nothing is ever written where inIsShown is false.
    explicit ProgressLine(bool inIsShown) : mIsShown(inIsShown) {}
    ~ProgressLine() { Clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Whether a text would be shown now: the first one, and then ten a second.
    bool IsDue() const;

    /// Columns that a text may have: those of the terminal, less the last one, in which some terminals wrap.
    static std::size_t Room();

    /// Shows a text in the place of the one before.
    void Show(const std::string& inText);

    /// Takes the line away.
    void Clear();

private:
    const bool mIsShown;
    bool mHasText = false;
    std::chrono::steady_clock::time_point mShown;
};

} // namespace orl
