// Floor: System
// Conversions between 16-bit text and narrow text in a Windows code page, for older Windows files and functions.
// Everywhere else narrow text is UTF-8: see ORLString.h. Do not mix the two encodings.
//
// The code page follows the language of the process (ORLHostSettings.h): 932 for Japanese, 949 for Korean, and the
// system's default page for all others. On every platform results match those of Windows byte for byte:
// - A character that the page lacks is replaced by the Windows best fit, else by "?". Each half of a surrogate pair
//   becomes one "?".
// - A byte or a pair of bytes without a mapping becomes the page's default character: U+30FB in 932, "?" elsewhere.
// - An empty string stays empty.
//
// If the system cannot convert a string (it is longer than 2^31 - 1 bytes or units, or the system lacks the page), an
// assertion fires and the result is empty. No function reports a failure. Each function throws std::bad_alloc if out of
// memory, and std::length_error if the result is too long for its string type.
//
// Thread-safe.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {
namespace StringUtils {

/// Converts from the code page of the current language.
ORL_API UTF16String ToUnicode(const std::string& inText);

/// Returns a copy, so that a template can call ToUnicode with either string type.
ORL_API UTF16String ToUnicode(const UTF16String& inText);

/// Converts to the code page of the current language.
ORL_API std::string ToMultiByte(const UTF16String& inText);

/// Returns a copy.
ORL_API std::string ToMultiByte(const std::string& inText);

/// Same as ToUnicode and ToMultiByte, except in a host of the type CRV::kApplicationType_SystemCodePage. There they use
/// the system's default page regardless of the language.
ORL_API UTF16String CodePageMultiByteToUnicode16(const std::string& inText);
ORL_API std::string Unicode16ToCodePageMultiByte(const UTF16String& inText);

/// Removes trailing "0" characters while more than two units are left. Ignores decimal points: "1.500" becomes "1.5",
/// "2.000" becomes "2.", and "1000" becomes "10".
ORL_API UTF16String TrimTrailingZeros(const UTF16String& inText);

/// Returns the number of the system's default code page.
///
/// On Linux this is the page that Windows uses for the user's locale. The language in LC_ALL, LC_CTYPE or LANG (the
/// first that is not empty) determines it, regardless of the encoding: ru_RU.UTF-8 is 1251, ja_JP is 932; a locale
/// without a language uses 1252. The environment is read once.
ORL_API unsigned int GetDefaultCodePage();

/// Exists only in the Linux library; a host for both platforms calls it from a Linux-only source file.
namespace Linux {

/// Sets the default code page of this process, for conversions that begin later; 0 restores the page of the user's
/// locale. Hosts call it at start-up. Supports the pages 437, 874, 932, 936, 949, 950 and 1250 to 1258. For any other
/// page changes nothing and returns kGeneralFailure.
ORL_API Result SetDefaultCodePage(unsigned int inCodePage);

} // namespace Linux
} // namespace StringUtils
} // namespace ORL
