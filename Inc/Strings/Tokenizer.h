// Splits a string at a separator, token by token.
#pragma once

#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <utility>

namespace ORL {

class Tokenizer
{
public:
    /// kSkip counts a run of separators as one, kKeep counts each.
    enum class Runs { kSkip, kKeep };

    /// inText is not owned and must outlive the tokeniser.
    Tokenizer(const UTF16String& inText, UTF16String inSeparator, Runs inRuns)
        : mText(&inText), mSeparator(std::move(inSeparator)), mPosition(0), mRuns(inRuns)
    {
    }

    /// Returns the next token: empty if none is left, and between two adjacent separators.
    UTF16String Next();

    /// A token as a view into the string.
    struct Token
    {
        const unsigned short* mBegin;
        UTF16String::size_type mSize;
    };
    Token NextToken();

private:
    /// Skips the rest of a run of separators.
    void SkipRun();

    const UTF16String* mText;
    UTF16String mSeparator;
    unsigned __int64 mPosition; // start of the next token; npos if none is left
    Runs mRuns;
};

} // namespace ORL
