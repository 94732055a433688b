#include "Text.h"

#include "Failure.h"

#include <ORLHostPath.h>
#include <cstdio>
#include <tvxcore/Text.h>

namespace orl {

namespace {

bool IsLibraryPath(const std::string& inArgument)
{
    if (inArgument.compare(0, 2, "\\\\") == 0) {
        return true;
    }
    const char first = inArgument.empty() ? '\0' : inArgument[0];
    const bool isLetter = (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
    return isLetter && inArgument.size() > 1 && inArgument[1] == ':';
}

} // namespace

std::string ToUTF8(const UTF16String& inText)
{
    const UTF8String text = tvxcore::utility::UTF16to8(inText);
    return std::string(text.begin(), text.end());
}

UTF16String ToUTF16(const std::string& inText)
{
    return tvxcore::utility::UTF8to16(reinterpret_cast<const unsigned char*>(inText.data()), inText.size());
}

UTF16String PathOfArgument(const std::string& inArgument)
{
    if (IsLibraryPath(inArgument)) {
        return ToUTF16(inArgument);
    }
    UTF16String path = ORL::PathUtils::FromHostPath(inArgument);
    if (path.empty()) {
        throw Failure("no drive leads to \"" + inArgument + "\"");
    }
    return path;
}

std::string JsonQuoted(const std::string& inText)
{
    std::string quoted = "\"";
    for (const char character : ToUTF8(ToUTF16(inText))) {
        const unsigned char byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted.append(1, '\\').append(1, character);
        } else if (byte < 0x20) {
            char escape[7];
            std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(byte));
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted += '"';
}

} // namespace orl
