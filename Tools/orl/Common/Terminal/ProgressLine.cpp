#include "ProgressLine.h"

#include "Console.h"
#include "Text.h"
#include "TextWidth.h"

#include <algorithm>
#include <iostream>

namespace orl {

namespace {

constexpr char kBetween[] = "   ";

std::string Joined(const std::vector<ProgressPart>& inParts, int inMostRank)
{
    std::string text;
    for (const ProgressPart& part : inParts) {
        if (part.mRank <= inMostRank && !part.mText.empty()) {
            text += (text.empty() ? "" : kBetween) + part.mText;
        }
    }
    return WithoutControlCharacters(text);
}

} // namespace

std::string FitProgress(const std::vector<ProgressPart>& inParts, std::size_t inColumns)
{
    int rank = 0;
    for (const ProgressPart& part : inParts) {
        rank = std::max(rank, part.mRank);
    }
    std::string text = Joined(inParts, rank);
    while (rank > 0 && ColumnsOf(text) > inColumns) {
        text = Joined(inParts, --rank);
    }
    return PrefixOfWidth(text, inColumns);
}

bool ProgressLine::IsDue() const
{
    return mIsShown && (!mHasText || std::chrono::steady_clock::now() - mLastShown >= std::chrono::milliseconds(100));
}

std::size_t ProgressLine::AvailableColumns()
{
    return TerminalColumns() - 1;
}

// Overwrites the old text with blanks: a Windows console would print the escape sequence that clears a line.
void ProgressLine::Show(const std::string& inText)
{
    if (!mIsShown) {
        return;
    }
    mLastShown = std::chrono::steady_clock::now();
    const std::size_t available = AvailableColumns();
    const std::string text = PrefixOfWidth(inText, available);
    std::cout << '\r' << PaddedTo(std::min(mColumns, available), text) << std::flush;
    mColumns = ColumnsOf(text);
    mHasText = true;
}

void ProgressLine::Clear()
{
    if (mHasText) {
        std::cout << '\r' << std::string(std::min(mColumns, AvailableColumns()), ' ') << '\r' << std::flush;
        mHasText = false;
        mColumns = 0;
    }
}

} // namespace orl
