// Compares JSON regardless of its layout.
#pragma once

#include <cctype>
#include <string>

namespace ORLTest {

/// Returns inJson without white space outside strings.
inline std::string WithoutLayout(const std::string& inJson)
{
    std::string compact;
    bool isInString = false;
    for (std::size_t i = 0; i < inJson.size(); ++i) {
        const char character = inJson[i];
        if (isInString && character == '\\') {
            compact += character;
            compact += inJson[++i];
            continue;
        }
        isInString = isInString != (character == '"');
        if (isInString || std::isspace(static_cast<unsigned char>(character)) == 0) {
            compact += character;
        }
    }
    return compact;
}

} // namespace ORLTest
