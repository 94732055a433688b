// Conversion between UTF-8 and UTF-16 into memory of the caller: the kernels under the string functions.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utf {

/// What stands for each ill-formed piece.
inline constexpr unsigned short kReplacement = 0xFFFD;

/// UTF-16 never needs more units than UTF-8 has bytes.
constexpr std::size_t UTF16Bound(std::size_t inBytes) noexcept
{
    return inBytes;
}

/// A unit of UTF-16 never needs more than three bytes.
constexpr std::size_t UTF8Bound(std::size_t inUnits) noexcept
{
    return 3 * inUnits;
}

/// Writes the UTF-16 of inText to outText, which holds UTF16Bound(inLength) units, and gives the number written.
/// Each maximal subpart of an ill-formed sequence becomes one U+FFFD.
std::size_t ToUTF16Plain(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept;

/// Writes the UTF-8 of inText to outText, which holds UTF8Bound(inLength) bytes, and gives the number written.
/// Each unpaired surrogate becomes U+FFFD.
std::size_t ToUTF8Plain(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept;

} // namespace utf
} // namespace tvxcore
