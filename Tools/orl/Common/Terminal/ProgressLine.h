// A progress line that is overwritten in place, shown only on terminals. The line is never wider than the terminal,
// because a wrapped line cannot be overwritten.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// A part of the line. If there is not enough room, the parts with the highest rank are omitted first; rank 0 is never
/// omitted.
struct ProgressPart
{
    std::string mText;
    int mRank = 0;
};

/// Returns the parts that fit into inColumns, separated by three blanks; truncates if not even rank 0 fits. Control
/// characters become "?".
std::string FitProgress(const std::vector<ProgressPart>& inParts, std::size_t inColumns);

class ProgressLine
{
public:
    /// If inIsShown is false, nothing is ever written.
    explicit ProgressLine(bool inIsShown) : mIsShown(inIsShown) {}
    ~ProgressLine() { Clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Returns whether it is time to call Show: true while no text is shown, then ten times a second.
    bool IsDue() const;

    /// Returns the columns available for text: one less than the terminal has, because some terminals wrap in the
    /// last column.
    static std::size_t AvailableColumns();

    /// Replaces the line shown.
    void Show(const std::string& inText);

    /// Erases the line.
    void Clear();

private:
    const bool mIsShown;
    bool mHasText = false;
    std::size_t mColumns = 0; // width of the line shown
    std::chrono::steady_clock::time_point mLastShown;
};

} // namespace orl
