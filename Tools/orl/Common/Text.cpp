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

std::string WithoutControlCharacters(const std::string& inText)
{
    std::string line = inText;
    for (char& character : line) {
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
            character = '?';
        }
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
