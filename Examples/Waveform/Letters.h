// Letters of 5 by 7 points, plus one row below the baseline.
#pragma once

#include <cstddef>

inline constexpr std::size_t kLetterWidth = 5;
inline constexpr std::size_t kLetterHeight = 8;

/// Characters outside ASCII are drawn as a question mark.
bool LetterHasPoint(char inCharacter, std::size_t inColumn, std::size_t inRow);

/// Returns whether the byte continues a UTF-8 character; such bytes are not drawn.
inline bool IsContinuation(char inCharacter)
{
    return (static_cast<unsigned char>(inCharacter) & 0xC0) == 0x80;
}
