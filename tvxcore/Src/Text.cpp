#include <tvxcore/Text.h>

#include <Utf.h>

#include <cstring>

namespace tvxcore {
namespace utility {

namespace {

// Short texts are converted on the stack and copied once: a 16-bit string that is sized first and filled then is
// cleared unit by unit, which costs more than the conversion.
constexpr std::size_t kStackText = 1024;

std::size_t UnitCount(const unsigned short* inText) noexcept
{
    return std::char_traits<unsigned short>::length(inText);
}

} // namespace

UTF16String AsciiToUTF16(const char* inText)
{
    return UTF16String(inText, inText + std::strlen(inText));
}

UTF8String UTF16to8(const UTF16String& inText)
{
    return UTF16to8(inText.data(), inText.size());
}

UTF8String UTF16to8(const unsigned short* inText)
{
    return UTF16to8(inText, UnitCount(inText));
}

UTF8String UTF16to8(const unsigned short* inText, std::size_t inLength)
{
    unsigned char piece[utf::UTF8Bound(kStackText)];
    UTF8String result;
    while (inLength > kStackText) {
        // A pair of surrogates must not be cut in two.
        const std::size_t count = (inText[kStackText - 1] & 0xFC00) == 0xD800 ? kStackText - 1 : kStackText;
        result.append(piece, utf::ToUTF8Plain(inText, count, piece));
        inText += count;
        inLength -= count;
    }
    result.append(piece, utf::ToUTF8Plain(inText, inLength, piece));
    return result;
}

UTF16String UTF8to16(const UTF8String& inText)
{
    return UTF8to16(inText.data(), inText.size());
}

UTF16String UTF8to16(const unsigned char* inText, std::size_t inLength)
{
    if (inLength <= kStackText) {
        unsigned short piece[utf::UTF16Bound(kStackText)];
        return UTF16String(piece, utf::ToUTF16Plain(inText, inLength, piece));
    }
    UTF16String result(utf::UTF16Bound(inLength), 0);
    result.resize(utf::ToUTF16Plain(inText, inLength, &result[0]));
    return result;
}

void ReplaceAllStringInString(UTF16String& ioText, const UTF16String& inFind, const UTF16String& inReplace)
{
    if (inFind.empty()) {
        return;
    }
    UTF16String::size_type found = ioText.find(inFind);
    if (found == UTF16String::npos) {
        return;
    }
    UTF16String result;
    UTF16String::size_type copied = 0;
    for (; found != UTF16String::npos; found = ioText.find(inFind, copied)) {
        result.append(ioText, copied, found - copied);
        result.append(inReplace);
        copied = found + inFind.size();
    }
    result.append(ioText, copied, UTF16String::npos);
    ioText.swap(result);
}

} // namespace utility
} // namespace tvxcore
