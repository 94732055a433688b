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

void ProgressLine::Show(const std::string& inText)
{
    if (!mIsShown) {
        return;
    }
    mLastShown = std::chrono::steady_clock::now();
    std::cout << '\r' << PrefixOfWidth(inText, AvailableColumns()) << "\x1b[K" << std::flush;
    mHasText = true;
}

void ProgressLine::Clear()
{
    if (mHasText) {
        std::cout << "\r\x1b[K" << std::flush;
        mHasText = false;
    }
}

} // namespace orl
