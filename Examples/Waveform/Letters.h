// Letters of 5 by 7 points, and one row below the line.
#pragma once

#include <cstddef>

inline constexpr std::size_t kLetterWidth = 5;
inline constexpr std::size_t kLetterHeight = 8;

/// A character that is no ASCII letter is a question mark.
bool LetterHasPoint(char inCharacter, std::size_t inColumn, std::size_t inRow);

/// The bytes of UTF-8 behind the first of a character: they are not drawn.
inline bool IsContinuation(char inCharacter)
{
    return (static_cast<unsigned char>(inCharacter) & 0xC0) == 0x80;
}
