// The grammar of directory patterns. Does not resolve references.
#pragma once

#include <tvxcore/String.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ORL {

/// A parsed part of a pattern.
struct PatternPiece
{
    using Text = std::basic_string_view<unsigned short>;

    Text mText;   // as written
    Text mSymbol; // the symbol of a reference; empty for literal text
};

/// Splits a pattern into literal text and references. A "$" without "(" after it, or a "$(" without ")", is literal
/// text up to the end of the pattern.
class DirectoryPattern
{
public:
    /// inPattern must outlive the object. Skips leading white space, except vertical tabs.
    explicit DirectoryPattern(const UTF16String& inPattern)
        : mNext(inPattern.data()), mEnd(inPattern.data() + inPattern.size())
    {
        while (mNext != mEnd && IsSkipped(*mNext)) {
            ++mNext;
        }
    }

    /// Returns false, with outPiece unchanged, at the end of the pattern.
    bool GetNext(PatternPiece& outPiece)
    {
        if (mNext == mEnd) {
            return false;
        }
        outPiece = *mNext == '$' ? Reference() : Literal();
        mNext += outPiece.mText.size();
        return true;
    }

private:
    static bool IsSkipped(unsigned short inUnit)
    {
        return inUnit == ' ' || inUnit == '\n' || inUnit == '\r' || inUnit == '\t' || inUnit == '\f';
    }

    static PatternPiece::Text Between(const unsigned short* inBegin, const unsigned short* inEnd)
    {
        return PatternPiece::Text(inBegin, static_cast<std::size_t>(inEnd - inBegin));
    }

    PatternPiece Literal() const { return {Between(mNext, std::find(mNext, mEnd, '$')), PatternPiece::Text()}; }

    PatternPiece Reference() const
    {
        const unsigned short* const open = std::find(mNext + 1, mEnd, '(');
        const unsigned short* const close = std::find(open, mEnd, ')');
        if (close == mEnd) {
            return {Between(mNext, mEnd), PatternPiece::Text()};
        }
        return {Between(mNext, close + 1), Between(open + 1, close)};
    }

    const unsigned short* mNext;
    const unsigned short* mEnd;
};

} // namespace ORL
