#include <Tokenizer.h>

#include <ORLParamString.h>

namespace ORL {

UTF16String Tokenizer::Next()
{
    if (mPosition == UTF16String::npos) {
        return UTF16String();
    }
    const UTF16String::size_type start = mPosition;
    UTF16String::size_type found = mText->find(mSeparator, start);
    if (found == UTF16String::npos) {
        found = mText->size();
    }
    mPosition = found + 1; // one unit, also behind a longer separator
    if (mSkipRuns) {
        SkipRun();
    }
    if (mPosition >= mText->size()) {
        mPosition = UTF16String::npos;
    }
    return UTF16String(mText->data() + start, found - start);
}

void Tokenizer::SkipRun()
{
    // Only a separator of one unit can equal the single unit at the position.
    if (mSeparator.size() != 1) {
        return;
    }
    while (mPosition < mText->size() && (*mText)[mPosition] == mSeparator[0]) {
        ++mPosition;
    }
}

void SplitString(const UTF16String& inString, const UTF16String& inSeparator, UTF16String& outFirst,
                 UTF16String& outSecond)
{
    Tokenizer tokens(inString, inSeparator, true);
    UTF16String first = tokens.Next();
    UTF16String second = tokens.Next();
    // Only now: an output may be the text that is being cut.
    outFirst = std::move(first);
    outSecond = std::move(second);
}

} // namespace ORL
