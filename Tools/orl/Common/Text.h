// Between the text of the library and what a terminal takes, which is UTF-8 on both platforms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <tvxcore/String.h>

namespace orl {

std::string ToUTF8(const UTF16String& inText);
UTF16String ToUTF16(const std::string& inText);

/// The library path that an argument means. One that is rooted (a drive letter and ":", or two backslashes) is a
/// library path already; any other is a path of the host's system, taken from the current folder when relative. On
/// Linux a host file whose name begins like a drive is reached as "./C:name". Throws Failure where no drive leads.
UTF16String PathOfArgument(const std::string& inArgument);

/// A text in JSON's quotes. Bytes that are no UTF-8 become U+FFFD, since JSON holds none.
std::string JsonQuoted(const std::string& inText);

/// What a library path is on this host; the library path itself where no drive leads there.
std::string HostTextOf(const UTF16String& inPath);

/// A name below a folder, in the way in which the folder is written.
std::string JoinHostPath(const std::string& inFolder, const std::string& inName);

/// A text that stays on its line and gives a terminal no orders: "?" for each control character.
std::string OnOneLine(const std::string& inText);

/// The text on one line, with blanks behind it up to that many columns of a terminal.
std::string PaddedTo(std::size_t inColumns, const std::string& inText);

/// The text on one line, or "..." and its end where it takes more than that many columns of a terminal.
std::string EndOf(const std::string& inText, std::size_t inColumns);

/// Two digits a byte, in lower case.
std::string Hexadecimal(const unsigned char* inBytes, std::size_t inCount);

/// One digit behind the point.
std::string Rounded(double inNumber);

/// A size in bytes, with the unit that suits: "1.2 GB". Units are powers of 1000.
std::string InWords(std::uint64_t inBytes);

} // namespace orl
