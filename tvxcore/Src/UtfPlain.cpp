#include <Utf.h>

#include <cstdint>

namespace tvxcore {
namespace utf {

namespace {

constexpr bool IsContinuation(unsigned char inByte) noexcept
{
    return (inByte & 0xC0) == 0x80;
}

// What a lead byte promises: how many bytes follow, and what the first of them may be. That one byte's range keeps
// out overlong forms, surrogates and everything above U+10FFFF; the further bytes are free.
struct Lead
{
    unsigned char mFollowers;
    unsigned char mFirstLow;
    unsigned char mFirstHigh;
    unsigned char mPayload;
};

constexpr Lead LeadOf(unsigned char inByte) noexcept
{
    if (inByte < 0xC2 || inByte > 0xF4) {
        return {0, 0, 0, 0};
    }
    if (inByte < 0xE0) {
        return {1, 0x80, 0xBF, static_cast<unsigned char>(inByte & 0x1F)};
    }
    if (inByte < 0xF0) {
        const unsigned char low = inByte == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = inByte == 0xED ? 0x9F : 0xBF;
        return {2, low, high, static_cast<unsigned char>(inByte & 0x0F)};
    }
    const unsigned char low = inByte == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = inByte == 0xF4 ? 0x8F : 0xBF;
    return {3, low, high, static_cast<unsigned char>(inByte & 0x07)};
}

// Reads one character that begins with a byte above 0x7F. An ill-formed one gives U+FFFD and leaves ioText behind
// its maximal subpart: the bytes that could still have become a character.
std::uint32_t ReadMultibyte(const unsigned char*& ioText, const unsigned char* inEnd) noexcept
{
    const Lead lead = LeadOf(*ioText++);
    if (lead.mFollowers == 0 || ioText == inEnd || *ioText < lead.mFirstLow || *ioText > lead.mFirstHigh) {
        return kReplacement;
    }
    std::uint32_t point = (std::uint32_t{lead.mPayload} << 6) | (*ioText++ & 0x3Fu);
    for (unsigned follower = 1; follower < lead.mFollowers; ++follower) {
        if (ioText == inEnd || !IsContinuation(*ioText)) {
            return kReplacement;
        }
        point = (point << 6) | (*ioText++ & 0x3Fu);
    }
    return point;
}

unsigned short* WriteUTF16(std::uint32_t inPoint, unsigned short* outText) noexcept
{
    if (inPoint < 0x10000) {
        *outText++ = static_cast<unsigned short>(inPoint);
    } else {
        *outText++ = static_cast<unsigned short>(0xD7C0 + (inPoint >> 10));
        *outText++ = static_cast<unsigned short>(0xDC00 + (inPoint & 0x3FF));
    }
    return outText;
}

constexpr bool IsHighSurrogate(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xDC00;
}

constexpr unsigned char Follower(std::uint32_t inBits) noexcept
{
    return static_cast<unsigned char>(0x80 | (inBits & 0x3F));
}

unsigned char* WriteUTF8(std::uint32_t inPoint, unsigned char* outText) noexcept
{
    if (inPoint < 0x80) {
        *outText++ = static_cast<unsigned char>(inPoint);
    } else if (inPoint < 0x800) {
        *outText++ = static_cast<unsigned char>(0xC0 | (inPoint >> 6));
        *outText++ = Follower(inPoint);
    } else if (inPoint < 0x10000) {
        *outText++ = static_cast<unsigned char>(0xE0 | (inPoint >> 12));
        *outText++ = Follower(inPoint >> 6);
        *outText++ = Follower(inPoint);
    } else {
        *outText++ = static_cast<unsigned char>(0xF0 | (inPoint >> 18));
        *outText++ = Follower(inPoint >> 12);
        *outText++ = Follower(inPoint >> 6);
        *outText++ = Follower(inPoint);
    }
    return outText;
}

std::uint32_t ReadUTF16(const unsigned short*& ioText, const unsigned short* inEnd) noexcept
{
    const unsigned unit = *ioText++;
    if ((unit & 0xF800) != 0xD800) {
        return unit;
    }
    if (!IsHighSurrogate(unit) || ioText == inEnd || !IsLowSurrogate(*ioText)) {
        return kReplacement;
    }
    return 0x10000u + ((unit & 0x3FFu) << 10) + (*ioText++ & 0x3FFu);
}

} // namespace

std::size_t ToUTF16Plain(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (inText != end) {
        if (*inText < 0x80) {
            *out++ = *inText++;
        } else {
            out = WriteUTF16(ReadMultibyte(inText, end), out);
        }
    }
    return static_cast<std::size_t>(out - outText);
}

std::size_t ToUTF8Plain(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (inText != end) {
        out = WriteUTF8(ReadUTF16(inText, end), out);
    }
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
