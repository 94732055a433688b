// Floor: Strings
// The normal way between narrow text, which is UTF-8 here, and 16-bit text.
#pragma once

#include <ORLCString.h>
#include <ORLConfig.h>

#include <tvxcore/String.h>

#include <string>

// Every function is stateless, may be called from any thread and gives its result by value. Text that is not well
// formed never fails: see tvxcore/Text.h for what stands in its place. Pointers must not be null.

namespace ORL {

/// The 16-bit text of a zero-terminated UTF-8 text.
ORL_API UTF16String MakeString(const char* inText);
ORL_API UTF16String MakeString(const unsigned char* inText);

/// The same of the text before the string's first zero byte; what stands behind it is dropped.
ORL_API UTF16String MakeString(const std::string& inText);

/// The same of the whole string, zero bytes included.
ORL_API UTF16String MakeString(const UTF8String& inText);

/// A copy of a zero-terminated 16-bit text.
ORL_API UTF16String MakeString(const unsigned short* inText);
ORL_API UTF16String MakeString(const CString& inText);

/// The same as tvxcore::utility::WcharToUTF16.
ORL_API UTF16String MakeStringFromWchar(const unsigned short* inText);

/// The UTF-8 text of the whole string, zero units included. Throws std::length_error where it is too long.
ORL_API std::string MakeStdString(const UTF16String& inText);

/// The text before the string's first zero unit.
ORL_API CString MakeCString(const UTF16String& inText);

} // namespace ORL

namespace tvxcore {
namespace utility {

/// A copy of the units up to the first zero. Surrogates are neither checked nor changed.
ORL_API UTF16String WcharToUTF16(const unsigned short* inText);

/// A copy of all units, zero units included, in a string with the standard allocator. An empty text allocates
/// nothing.
ORL_API std::basic_string<unsigned short, std::char_traits<unsigned short>, std::allocator<unsigned short>>
UTF16ToWstring(const UTF16String& inText);

} // namespace utility
} // namespace tvxcore
