#include <tvxcore/Text.h>

#include <Text/Utf.h>
#include <Text/UtfCharacter.h>

#include <cstdint>
#include <cstring>

namespace tvxcore {
namespace utility {

namespace {

// Text is converted on the stack and copied from there: a 16-bit string that is first resized and then filled is zeroed
// unit by unit, which costs more than the conversion. The piece is small enough for the smallest thread stacks.
constexpr std::size_t kPiece = 1024;

// Most names and words are this short. For so few units, conversion in registers costs less than storing and reloading
// the output of a kernel.
constexpr std::size_t kShortest = 8;
constexpr std::size_t kShort = 16;

// Loads the eight bytes at inBytes.
std::uint64_t WordAt(const void* inBytes) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, inBytes, sizeof(word));
    return word;
}

bool IsShortAscii(const unsigned char* inText, std::size_t inLength) noexcept
{
    return inLength >= kShortest && inLength <= kShort
           && ((WordAt(inText) | WordAt(inText + inLength - 8)) & 0x8080808080808080) == 0;
}

bool IsShortAscii(const unsigned short* inText, std::size_t inLength) noexcept
{
    const auto fourFrom = [inText](std::size_t inAt) { return WordAt(inText + inAt); };
    return inLength >= kShortest && inLength <= kShort
           && ((fourFrom(0) | fourFrom(4) | fourFrom(inLength - 8) | fourFrom(inLength - 4)) & 0xFF80FF80FF80FF80) == 0;
}

UTF8String LongUTF16to8(const unsigned short* inText, std::size_t inLength)
{
    unsigned char piece[utf::UTF8Bound(kPiece)];
    UTF8String result;
    result.reserve(inLength);
    while (inLength != 0) {
        const std::size_t count = utf::PieceOfUTF16(inText, inLength, kPiece);
        result.append(piece, utf::ToUTF8(inText, count, piece));
        inText += count;
        inLength -= count;
    }
    return result;
}

UTF16String LongUTF8to16(const unsigned char* inText, std::size_t inLength)
{
    unsigned short piece[utf::UTF16Bound(kPiece)];
    UTF16String result;
    while (inLength != 0) {
        const std::size_t count = utf::PieceOfUTF8(inText, inLength, kPiece);
        const std::size_t written = utf::ToUTF16(inText, count, piece);
        if (result.empty()) {
            // Assume that the rest expands like the beginning.
            result.reserve(written * (inLength / count + 1));
        }
        result.append(piece, written);
        inText += count;
        inLength -= count;
    }
    return result;
}

} // namespace

UTF16String AsciiToUTF16(const char* inText)
{
    const unsigned char* const text = reinterpret_cast<const unsigned char*>(inText);
    return UTF16String(text, text + std::strlen(inText));
}

UTF8String UTF16to8(const UTF16String& inText)
{
    return UTF16to8(inText.data(), inText.size());
}

UTF8String UTF16to8(const unsigned short* inText)
{
    return UTF16to8(inText, std::char_traits<unsigned short>::length(inText));
}

UTF8String UTF16to8(const unsigned short* inText, std::size_t inLength)
{
    if (IsShortAscii(inText, inLength)) {
        return UTF8String(inText, inText + inLength);
    }
    if (inLength > kPiece) {
        return LongUTF16to8(inText, inLength);
    }
    unsigned char piece[utf::UTF8Bound(kPiece)];
    return UTF8String(piece, utf::ToUTF8(inText, inLength, piece));
}

std::size_t UTF16to8(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    return utf::ToUTF8(inText, inLength, outText);
}

UTF16String UTF8to16(const UTF8String& inText)
{
    return UTF8to16(inText.data(), inText.size());
}

UTF16String UTF8to16(const unsigned char* inText, std::size_t inLength)
{
    if (IsShortAscii(inText, inLength)) {
        return UTF16String(inText, inText + inLength);
    }
    if (inLength > kPiece) {
        return LongUTF8to16(inText, inLength);
    }
    unsigned short piece[utf::UTF16Bound(kPiece)];
    return UTF16String(piece, utf::ToUTF16(inText, inLength, piece));
}

std::size_t UTF8to16(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    return utf::ToUTF16(inText, inLength, outText);
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
