// Converts between the bytes of a registry text file and 16-bit text.
#include "RegFileEncoding.h"

#include "RegFile.h"
#include "Text.h"

#include <algorithm>

namespace orl {

namespace {

UTF16String UnitsOf(const std::string& inBytes, std::size_t inFirst, std::size_t inLowByte)
{
    UTF16String units;
    units.reserve((inBytes.size() - inFirst) / 2);
    for (std::size_t at = inFirst; at + 1 < inBytes.size(); at += 2) {
        const auto low = static_cast<unsigned char>(inBytes[at + inLowByte]);
        const auto high = static_cast<unsigned char>(inBytes[at + 1 - inLowByte]);
        units.push_back(static_cast<unsigned short>(high << 8 | low));
    }
    return units;
}

std::size_t LastLineNumber(const UTF16String& inText)
{
    return 1 + static_cast<std::size_t>(std::count(inText.begin(), inText.end(), static_cast<unsigned short>('\n')));
}

UTF16String FromUTF16(const std::string& inBytes, std::size_t inLowByte)
{
    UTF16String text = UnitsOf(inBytes, 2, inLowByte);
    if (inBytes.size() % 2 != 0) {
        throw RegFileFault(LastLineNumber(text), "the file ends in the middle of a character");
    }
    return text;
}

// The conversion replaces invalid UTF-8 without an error. So this converts back: the first byte that differs is on the
// invalid line.
UTF16String FromUTF8(const std::string& inBytes)
{
    UTF16String text = ToUTF16(inBytes);
    const std::string again = ToUTF8(text);
    if (again != inBytes) {
        const auto different = std::mismatch(inBytes.begin(), inBytes.end(), again.begin(), again.end()).first;
        const auto line = 1 + std::count(inBytes.begin(), different, '\n');
        throw RegFileFault(static_cast<std::size_t>(line), "this is neither UTF-16 with a byte order mark nor UTF-8");
    }
    return text;
}

} // namespace

UTF16String DecodeRegFile(const std::string& inBytes)
{
    if (inBytes.compare(0, 2, "\xFF\xFE") == 0) {
        return FromUTF16(inBytes, 0);
    }
    if (inBytes.compare(0, 2, "\xFE\xFF") == 0) {
        return FromUTF16(inBytes, 1);
    }
    return FromUTF8(inBytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? inBytes.substr(3) : inBytes);
}

std::string EncodeRegFile(const UTF16String& inText)
{
    std::string bytes = "\xFF\xFE";
    bytes.reserve(2 + 2 * inText.size());
    for (const unsigned short unit : inText) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

} // namespace orl
