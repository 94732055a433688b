// A position in the text of a registry file, with its line number.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <string>

namespace orl {

/// inText must outlive the cursor. A line ends at CR LF, LF or CR.
class RegFileCursor
{
public:
    explicit RegFileCursor(const UTF16String& inText) : mText(inText) {}

    bool AtEnd() const { return mAt == mText.size(); }
    bool AtLineEnd() const { return AtEnd() || IsLineEnd(mText[mAt]); }

    /// Returns the next unit, or 0xFFFF, which is not a character, at the end of the text.
    unsigned short Peek() const { return AtEnd() ? static_cast<unsigned short>(0xFFFF) : mText[mAt]; }

    /// Returns the next unit, which may be a line break, and moves past it. Not valid at the end of the text.
    unsigned short Take();

    bool TakeIf(char inCharacter);

    /// If the text continues with the ASCII word, in any case, moves past it and returns true. inWord is in lower case.
    bool TakeWord(const char* inWord);

    /// Moves past the character, or throws RegFileFault with the message.
    void Expect(char inCharacter, const std::string& inMessage);

    void SkipBlanks();

    /// If a comment begins at the cursor, moves to the end of the line and returns true.
    bool SkipComment();

    /// Returns the rest of the line without its end, and moves to that end.
    UTF16String TakeRestOfLine();

    /// Moves past one line break if the cursor is at one.
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
