// Conversion, folding and formatting of text.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace tvxcore {
namespace utility {

/// Widens an ASCII text.
TVXCORE_API UTF16String AsciiToUTF16(const char* inText);

/// UTF-8 of a text. An unpaired surrogate becomes U+FFFD; nothing is dropped and nothing throws but memory.
TVXCORE_API UTF8String UTF16to8(const UTF16String& inText);
TVXCORE_API UTF8String UTF16to8(const unsigned short* inText);
TVXCORE_API UTF8String UTF16to8(const unsigned short* inText, std::size_t inLength);

/// The same into memory of the caller, which holds 3 * inLength bytes: gives the number of bytes written. What lies
/// behind them, up to that size, may be overwritten too. Never fails.
TVXCORE_API std::size_t UTF16to8(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept;

/// UTF-16 of a text. Each maximal subpart of an ill-formed sequence becomes one U+FFFD, by the Unicode standard's
/// recommended practice.
TVXCORE_API UTF16String UTF8to16(const UTF8String& inText);
TVXCORE_API UTF16String UTF8to16(const unsigned char* inText, std::size_t inLength);

/// The same into memory of the caller, which holds inLength units: gives the number of units written. What lies behind
/// them, up to that size, may be overwritten too. Never fails.
TVXCORE_API std::size_t UTF8to16(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept;

/// Full case folding of the Unicode standard, for comparison only.
TVXCORE_API UTF16String FoldCase(const UTF16String& inText);

/// Replaces every occurrence of inFind from left to right; what was put in is not searched again. An empty inFind
/// changes nothing.
TVXCORE_API void ReplaceAllStringInString(UTF16String& ioText, const UTF16String& inFind, const UTF16String& inReplace);

} // namespace utility
} // namespace tvxcore
