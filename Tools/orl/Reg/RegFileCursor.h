// A place in the text of a registry file that knows its line.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <string>

namespace orl {

/// The text must outlive the cursor. A line ends at CR LF, at LF or at CR.
class RegFileCursor
{
public:
    explicit RegFileCursor(const UTF16String& inText) : mText(inText) {}

    bool AtEnd() const { return mAt == mText.size(); }
    bool AtLineEnd() const { return AtEnd() || IsLineEnd(mText[mAt]); }

    /// The next unit; 0xFFFF at the end of the text, which is no character.
    unsigned short Peek() const { return AtEnd() ? static_cast<unsigned short>(0xFFFF) : mText[mAt]; }

    /// The next unit, a line end included. Not at the end of the text.
    unsigned short Take();

    bool TakeIf(char inCharacter);

    /// Takes a word in ASCII, in either case, or nothing.
    bool TakeWord(const char* inWord);

    /// Takes the character, or refuses the line with the message.
    void Expect(char inCharacter, const std::string& inMessage);

    void SkipBlanks();

    /// Goes to the end of the line if a comment begins here, and returns whether it does.
    bool SkipComment();

    /// Takes what is left of the line, without its end.
    UTF16String TakeRestOfLine();

    /// Takes one line end, if the cursor is at one.
    void TakeLineEnd();

    std::size_t Line() const { return mLine; }

    /// Throws RegFileFault for this line.
    [[noreturn]] void Refuse(const std::string& inMessage) const;

private:
    static bool IsLineEnd(unsigned short inUnit) { return inUnit == '\n' || inUnit == '\r'; }

    const UTF16String& mText;
    std::size_t mAt = 0;
    std::size_t mLine = 1;
};

} // namespace orl
