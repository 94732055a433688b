// Conversion of single characters: the reference that every kernel must match, and the code that kernels use at the
// end of the input.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utf {

/// The unit that replaces each ill-formed sequence.
inline constexpr unsigned short kReplacement = 0xFFFD;

constexpr bool IsContinuation(unsigned char inByte) noexcept
{
    return (inByte & 0xC0) == 0x80;
}

constexpr bool IsSurrogate(unsigned inUnit) noexcept
{
    return (inUnit & 0xF800) == 0xD800;
}

constexpr bool IsHighSurrogate(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xDC00;
}

/// The properties of a lead byte: how many bytes must follow, and the range of the first of them. This range excludes
/// overlong forms, surrogates and everything above U+10FFFF; the other bytes may be any continuation bytes.
struct Lead
{
    unsigned char mFollowers; // 0: not a valid lead byte
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

/// Reads one character that begins with a byte above 0x7F. For an ill-formed sequence returns U+FFFD and advances
/// ioText past its maximal subpart: the bytes that could have begun a character.
inline std::uint32_t ReadMultibyte(const unsigned char*& ioText, const unsigned char* inEnd) noexcept
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

inline unsigned short* WriteUTF16(std::uint32_t inPoint, unsigned short* outText) noexcept
{
    if (inPoint < 0x10000) {
        *outText++ = static_cast<unsigned short>(inPoint);
    } else {
        *outText++ = static_cast<unsigned short>(0xD7C0 + (inPoint >> 10));
        *outText++ = static_cast<unsigned short>(0xDC00 + (inPoint & 0x3FF));
    }
    return outText;
}

/// Converts one character, or one ill-formed sequence.
inline unsigned short* StepToUTF16(const unsigned char*& ioText, const unsigned char* inEnd,
                                   unsigned short* outText) noexcept
{
    if (*ioText < 0x80) {
        *outText++ = *ioText++;
        return outText;
    }
    return WriteUTF16(ReadMultibyte(ioText, inEnd), outText);
}

inline std::uint32_t ReadUTF16(const unsigned short*& ioText, const unsigned short* inEnd) noexcept
{
    const unsigned unit = *ioText++;
    if (!IsSurrogate(unit)) {
        return unit;
    }
    if (!IsHighSurrogate(unit) || ioText == inEnd || !IsLowSurrogate(*ioText)) {
        return kReplacement;
    }
    return 0x10000u + ((unit & 0x3FFu) << 10) + (*ioText++ & 0x3FFu);
}

constexpr unsigned char Follower(std::uint32_t inBits) noexcept
{
    return static_cast<unsigned char>(0x80 | (inBits & 0x3F));
}

inline unsigned char* WriteUTF8(std::uint32_t inPoint, unsigned char* outText) noexcept
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

/// Converts one character, or one unpaired surrogate.
inline unsigned char* StepToUTF8(const unsigned short*& ioText, const unsigned short* inEnd,
                                 unsigned char* outText) noexcept
{
    return WriteUTF8(ReadUTF16(ioText, inEnd), outText);
}

/// Returns the length of the longest prefix of inText, at most inLimit bytes (at least 4), that converts independently
/// of the rest. A prefix ends before a byte that is not a continuation byte. Four continuation bytes in a row cannot
/// belong to one character, so the last of them may begin the next piece.
inline std::size_t PieceOfUTF8(const unsigned char* inText, std::size_t inLength, std::size_t inLimit) noexcept
{
    if (inLength <= inLimit) {
        return inLength;
    }
    for (std::size_t back = 0; back < 4; ++back) {
        if (!IsContinuation(inText[inLimit - back])) {
            return inLimit - back;
        }
    }
    return inLimit;
}

/// Same as PieceOfUTF8, for UTF-16: a surrogate pair is not split.
inline std::size_t PieceOfUTF16(const unsigned short* inText, std::size_t inLength, std::size_t inLimit) noexcept
{
    if (inLength <= inLimit) {
        return inLength;
    }
    return IsHighSurrogate(inText[inLimit - 1]) ? inLimit - 1 : inLimit;
}

} // namespace utf
} // namespace tvxcore
