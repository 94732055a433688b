#include "Text.h"

#include "Failure.h"
#include "TextWidth.h"

#include <ORLHostPath.h>
#include <algorithm>
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
    if (inArgument.empty()) {
        throw Failure("the path is empty");
    }
    if (IsLibraryPath(inArgument)) {
        return ToUTF16(inArgument);
    }
    UTF16String path = ORL::PathUtils::FromHostPath(inArgument);
    if (path.empty()) {
        throw Failure("\"" + inArgument + "\" is not on any drive");
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

std::string HostTextOf(const UTF16String& inPath)
{
    std::string host;
    return ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(inPath, host)) ? host : ToUTF8(inPath);
}

std::string JoinHostPath(const std::string& inFolder, const std::string& inName)
{
    const char last = inFolder.empty() ? '/' : inFolder.back();
    if (last == '/' || last == '\\') {
        return inFolder + inName;
    }
    return inFolder + (inFolder.find('\\') != std::string::npos ? "\\" : "/") + inName;
}

namespace {

// Returns the number of bytes of the control character at a position of UTF-8 text, or 0 for another character:
// U+0000 to U+001F, U+007F to U+009F, the line and paragraph separators U+2028 and U+2029, and the characters that
// change the direction of text, U+202A to U+202E and U+2066 to U+2069.
std::size_t ControlCharacterLength(const std::string& inText, std::size_t inAt)
{
    const auto byte = [&](std::size_t inOffset) {
        return inAt + inOffset < inText.size() ? static_cast<unsigned char>(inText[inAt + inOffset]) : 0u;
    };
    if (byte(0) < 0x20 || byte(0) == 0x7F) {
        return 1;
    }
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0x9F) {
        return 2;
    }
    const bool isSeparatorOrDirection = byte(0) == 0xE2
                                        && ((byte(1) == 0x80 && byte(2) >= 0xA8 && byte(2) <= 0xAE)
                                            || (byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9));
    return isSeparatorOrDirection ? 3 : 0;
}

} // namespace

std::string WithoutControlCharacters(const std::string& inText)
{
    std::string line;
    for (std::size_t at = 0; at < inText.size();) {
        const std::size_t length = ControlCharacterLength(inText, at);
        line += length == 0 ? inText[at] : '?';
        at += std::max<std::size_t>(length, 1);
    }
    return line;
}

std::string PaddedTo(std::size_t inColumns, const std::string& inText)
{
    std::string padded = WithoutControlCharacters(inText);
    padded.append(inColumns - std::min(inColumns, ColumnsOf(padded)), ' ');
    return padded;
}

std::string TruncateFront(const std::string& inText, std::size_t inColumns)
{
    static const std::string kDots = "...";
    std::string text = WithoutControlCharacters(inText);
    if (ColumnsOf(text) <= inColumns) {
        return text;
    }
    return inColumns <= kDots.size() ? PrefixOfWidth(kDots, inColumns)
                                     : kDots + SuffixOfWidth(text, inColumns - kDots.size());
}

std::string Hexadecimal(const unsigned char* inBytes, std::size_t inCount)
{
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < inCount; ++i) {
        text.append(1, kDigits[inBytes[i] >> 4]).append(1, kDigits[inBytes[i] & 15]);
    }
    return text;
}

std::string Rounded(double inNumber)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f", inNumber);
    return text;
}

std::string FormatSize(std::uint64_t inBytes)
{
    static const char* const kUnits[] = {"kB", "MB", "GB", "TB"};
    if (inBytes < 1000) {
        return std::to_string(inBytes) + " B";
    }
    double size = static_cast<double>(inBytes) / 1000;
    std::size_t unit = 0;
    for (; size >= 999.95 && unit < 3; ++unit) {
        size /= 1000;
    }
    return Rounded(size) + " " + kUnits[unit];
}

} // namespace orl
