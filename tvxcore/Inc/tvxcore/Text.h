// Conversion, case folding and replacement of strings. Thread-safe.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace tvxcore {
namespace utility {

/// Widens an ASCII string.
TVXCORE_API UTF16String AsciiToUTF16(const char* inText);

/// Converts to UTF-8. An unpaired surrogate becomes U+FFFD; nothing is dropped. Throws only std::bad_alloc.
TVXCORE_API UTF8String UTF16to8(const UTF16String& inText);
TVXCORE_API UTF8String UTF16to8(const unsigned short* inText);
TVXCORE_API UTF8String UTF16to8(const unsigned short* inText, std::size_t inLength);

/// Converts to UTF-8 in the caller's buffer, of at least 3 * inLength bytes. Returns the number of bytes written. May
/// overwrite the rest of the buffer, up to that size. Never fails.
TVXCORE_API std::size_t UTF16to8(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept;

/// Converts to UTF-16. Each maximal subpart of an ill-formed sequence becomes one U+FFFD, as the Unicode standard
/// recommends.
TVXCORE_API UTF16String UTF8to16(const UTF8String& inText);
TVXCORE_API UTF16String UTF8to16(const unsigned char* inText, std::size_t inLength);

/// Converts to UTF-16 in the caller's buffer, of at least inLength units. Returns the number of units written. May
/// overwrite the rest of the buffer, up to that size. Never fails.
TVXCORE_API std::size_t UTF8to16(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept;

/// Returns the full case folding of the Unicode standard, for comparison only, not for display.
TVXCORE_API UTF16String FoldCase(const UTF16String& inText);

/// Replaces every occurrence of inFind, from left to right; the inserted inReplace is not searched again. Does nothing
/// if inFind is empty.
TVXCORE_API void ReplaceAllStringInString(UTF16String& ioText, const UTF16String& inFind, const UTF16String& inReplace);

/// Writes a 16-bit string to a byte stream as UTF-8; the stream's width counts bytes. A template, so that it accepts no
/// implicit conversions and is not ambiguous with a host's own operator.
template <class StreamTraits, class Traits>
std::basic_ostream<char, StreamTraits>&
operator<<(std::basic_ostream<char, StreamTraits>& ioStream,
           const std::basic_string<unsigned short, Traits, SmallBlockAllocator::STLAllocator<unsigned short>>& inText)
{
    const UTF8String text = UTF16to8(inText);
    return ioStream << std::basic_string<char, StreamTraits>(text.begin(), text.end());
}

} // namespace utility
} // namespace tvxcore
