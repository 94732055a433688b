// Floor: Strings
// Cuts a text at a separator, token by token.
#pragma once

#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <utility>

namespace ORL {

class Tokenizer
{
public:
    /// inText is not owned and must outlive the tokeniser. With inSkipRuns a run of separators counts as one.
    Tokenizer(const UTF16String& inText, UTF16String inSeparator, bool inSkipRuns)
        : mText(&inText), mSeparator(std::move(inSeparator)), mPosition(0), mSkipRuns(inSkipRuns)
    {
    }

    /// The next token; empty when none is left, and where two separators meet.
    UTF16String Next();

    /// The same as a part of the text, for as long as that stands.
    struct Token
    {
        const unsigned short* mBegin;
        UTF16String::size_type mSize;
    };
    Token NextToken();

private:
    /// Steps over the rest of a run of separators.
    void SkipRun();

    const UTF16String* mText;
    UTF16String mSeparator;
    unsigned __int64 mPosition; // where the next token starts, npos when no token is left
    bool mSkipRuns;
};

} // namespace ORL
