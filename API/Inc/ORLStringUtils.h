// Floor: System
// Conversions between 16-bit text and narrow text in a code page of the home platform, as its older files and functions
// use it. Everywhere else narrow text is UTF-8: see ORLString.h. The two must not be mixed.
//
// The code page follows the language of the process (ORLHostSettings.h): 932 for Japanese, 949 for Korean, and the
// system's default page for all others. The answers are those of the home platform on every platform, to the byte:
// - A character that the page lacks becomes the one that the home platform considers the best fit, else "?". Each half
//   of a surrogate pair becomes one "?".
// - A byte or a pair of bytes without a meaning becomes the page's default character: U+30FB in 932, "?" in all others.
// - An empty text stays empty.
//
// Text that the system cannot convert at all (longer than 2^31 - 1 bytes or units, or a page that it lacks) gives an
// empty text, after an assertion. No function reports a failure. Each throws std::bad_alloc if memory is out, and
// std::length_error if the result is too long for its string.
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

/// Returns a copy, so that a template can call it with either kind of text.
ORL_API UTF16String ToUnicode(const UTF16String& inText);

/// Converts to the code page of the current language.
ORL_API std::string ToMultiByte(const UTF16String& inText);

/// Returns a copy.
ORL_API std::string ToMultiByte(const std::string& inText);

/// Like ToUnicode and ToMultiByte, except in a host of the type CRV::kApplicationType_SystemCodePage: these two then
/// use the system's default page whatever the language is.
ORL_API UTF16String CodePageMultiByteToUnicode16(const std::string& inText);
ORL_API std::string Unicode16ToCodePageMultiByte(const UTF16String& inText);

/// Removes "0" characters from the end while more than two units are left. Knows nothing of decimal points: "1.500"
/// becomes "1.5", "2.000" becomes "2.", and "1000" becomes "10".
ORL_API UTF16String TrimTrailingZeros(const UTF16String& inText);

/// Returns the number of the system's default code page.
///
/// On Linux that is the page of a home machine with the user's locale: the language in LC_ALL, LC_CTYPE or LANG (the
/// first that is not empty) decides, whatever encoding stands behind it. ru_RU.UTF-8 is 1251, ja_JP is 932; a locale
/// that names no language is 1252. The environment is read once.
ORL_API unsigned int GetDefaultCodePage();

/// These functions exist in the Linux library alone; a host that runs on both platforms calls them from its Linux
/// sources.
namespace Linux {

/// Sets the default code page of this process, for conversions that begin after it; 0 goes back to the one of the
/// user's locale. Hosts do this at start. The pages are 437, 874, 932, 936, 949, 950 and 1250 to 1258; any other is
/// refused with kGeneralFailure, and nothing changes.
ORL_API Result SetDefaultCodePage(unsigned int inCodePage);

} // namespace Linux
} // namespace StringUtils
} // namespace ORL
