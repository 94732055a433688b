// Between the text of the library and what a terminal takes, which is UTF-8 on both platforms.
#pragma once

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

} // namespace orl
