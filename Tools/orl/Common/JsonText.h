// Names as members of JSON objects.
#pragma once

#include "Text.h"

#include <string>

namespace orl {

/// Returns "KEY": "NAME". For a name that is not valid UTF-8, which JSON cannot represent, adds "KEYBytes":
/// "HEX", its bytes in hexadecimal.
inline std::string JsonNameMember(const std::string& inKey, const std::string& inName)
{
    std::string member = "\"" + inKey + "\": " + JsonQuoted(inName);
    if (ToUTF8(ToUTF16(inName)) != inName) {
        member += ", \"" + inKey + "Bytes\": \""
                  + Hexadecimal(reinterpret_cast<const unsigned char*>(inName.data()), inName.size()) + '"';
    }
    return member;
}

} // namespace orl
