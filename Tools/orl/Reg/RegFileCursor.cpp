#include "RegFileCursor.h"

#include "RegFile.h"

#include <cstring>

namespace orl {

unsigned short RegFileCursor::Take()
{
    const unsigned short unit = mText[mAt++];
    const bool isFirstOfTwo = unit == '\r' && mAt < mText.size() && mText[mAt] == '\n';
    if (IsLineEnd(unit) && !isFirstOfTwo) {
        ++mLine;
    }
    return unit;
}

bool RegFileCursor::TakeIf(char inCharacter)
{
    if (AtEnd() || mText[mAt] != static_cast<unsigned char>(inCharacter)) {
        return false;
    }
    ++mAt;
    return true;
}

bool RegFileCursor::TakeWord(const char* inWord)
{
    const std::size_t length = std::strlen(inWord);
    if (mText.size() - mAt < length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned unit = mText[mAt + i];
        const unsigned lower = unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit;
        if (lower != static_cast<unsigned char>(inWord[i])) {
            return false;
        }
    }
    mAt += length;
    return true;
}

void RegFileCursor::Expect(char inCharacter, const std::string& inMessage)
{
    if (!TakeIf(inCharacter)) {
        Refuse(inMessage);
    }
}

void RegFileCursor::SkipBlanks()
{
    while (TakeIf(' ') || TakeIf('\t')) {
    }
}

bool RegFileCursor::SkipComment()
{
    if (AtEnd() || Peek() != ';') {
        return false;
    }
    TakeRestOfLine();
    return true;
}

UTF16String RegFileCursor::TakeRestOfLine()
{
    const std::size_t first = mAt;
    while (!AtLineEnd()) {
        ++mAt;
    }
    return mText.substr(first, mAt - first);
}

void RegFileCursor::TakeLineEnd()
{
    if (AtEnd() || !AtLineEnd()) {
        return;
    }
    const bool isFirstOfTwo = Take() == '\r' && !AtEnd() && mText[mAt] == '\n';
    if (isFirstOfTwo) {
        Take();
    }
}

void RegFileCursor::Refuse(const std::string& inMessage) const
{
    throw RegFileFault(mLine, inMessage);
}

} // namespace orl
