// Conversions between library strings and terminal output, which is UTF-8 on both platforms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <tvxcore/String.h>

namespace orl {

std::string ToUTF8(const UTF16String& inText);
UTF16String ToUTF16(const std::string& inText);

/// Converts an argument to a library path. A rooted argument (a drive letter and ":", or two backslashes) is already a
/// library path; any other is a host path, which may be relative. On Linux, write "./C:name" for a host file
/// whose name begins like a drive. Throws Failure if no drive contains the path.
UTF16String PathOfArgument(const std::string& inArgument);

/// Returns a string in JSON quotes. Invalid UTF-8 becomes U+FFFD, because JSON cannot represent it.
std::string JsonQuoted(const std::string& inText);

/// Returns the host path of a library path, or the library path itself if no drive contains it.
std::string HostTextOf(const UTF16String& inPath);

/// Joins a folder and a name with a backslash if the folder contains one, otherwise with "/".
std::string JoinHostPath(const std::string& inFolder, const std::string& inName);

/// Replaces each control character with "?", so that a string stays on one line and cannot control the terminal.
std::string WithoutControlCharacters(const std::string& inText);

/// Returns the string on one line, padded with blanks to a width of inColumns terminal columns.
std::string PaddedTo(std::size_t inColumns, const std::string& inText);

/// Returns the string on one line. A string wider than inColumns terminal columns becomes "..." and its end.
std::string TruncateFront(const std::string& inText, std::size_t inColumns);

/// Returns two lower-case digits per byte.
std::string Hexadecimal(const unsigned char* inBytes, std::size_t inCount);

/// Returns the number with one decimal.
std::string Rounded(double inNumber);

/// Returns a size with a suitable unit: "1.2 GB". Units are powers of 1000.
std::string FormatSize(std::uint64_t inBytes);

} // namespace orl
