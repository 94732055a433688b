// Floor: Strings
// Conversion between narrow strings, which are UTF-8 here, and 16-bit strings.
#pragma once

#include <ORLCString.h>
#include <ORLConfig.h>

#include <tvxcore/String.h>
#include <tvxcore/Text.h>

#include <string>

// All functions are stateless and thread-safe. Malformed text is not an error; tvxcore/Text.h documents how
// it is replaced. Pointers must not be null. Throws std::bad_alloc.

namespace ORL {

/// Converts a zero-terminated UTF-8 string to UTF-16.
ORL_API UTF16String MakeString(const char* inText);
ORL_API UTF16String MakeString(const unsigned char* inText);

/// Converts the string up to its first zero byte; the rest is dropped.
ORL_API UTF16String MakeString(const std::string& inText);

/// Converts the whole string, zero bytes included.
ORL_API UTF16String MakeString(const UTF8String& inText);

/// Returns a copy of a zero-terminated 16-bit string.
ORL_API UTF16String MakeString(const unsigned short* inText);
ORL_API UTF16String MakeString(const CString& inText);

/// Same as tvxcore::utility::WcharToUTF16.
ORL_API UTF16String MakeStringFromWchar(const unsigned short* inText);

/// Returns the whole string as UTF-8, zero units included. Throws std::length_error if the result is too long.
ORL_API std::string MakeStdString(const UTF16String& inText);

/// Returns a copy of the string up to its first zero unit.
ORL_API CString MakeCString(const UTF16String& inText);

} // namespace ORL

namespace tvxcore {
namespace utility {

/// Returns a copy of the units up to the first zero. Surrogates are neither checked nor changed.
ORL_API UTF16String WcharToUTF16(const unsigned short* inText);

/// Returns a copy of all units, zero units included, in a string with the standard allocator. An empty string allocates
/// nothing.
ORL_API std::basic_string<unsigned short, std::char_traits<unsigned short>, std::allocator<unsigned short>>
UTF16ToWstring(const UTF16String& inText);

} // namespace utility
} // namespace tvxcore
