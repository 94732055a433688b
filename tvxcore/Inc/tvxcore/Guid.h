// 16-byte identifiers of classes, interfaces and categories.
//
//   using namespace tvxcore::literals;
//   constexpr tvxcore::utility::Guid kInterfaceID = "{20974874-84a4-4245-9372-b24a16498199}"_guid;
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>
#include <tvxcore/Text.h>
#include <tvxcore/Throw.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

namespace tvxcore {
namespace utility {

/// A plain 16-byte value. Has the memory layout of a Windows GUID, and may be read as two 64-bit
/// little-endian words. A constexpr constant needs no initialisation at load. Only CreateUnique and AsString
/// throw.
class Guid
{
public:
    /// Constructs an identifier whose bits are all zero.
    constexpr Guid() noexcept = default;

    /// Constructs from the two words.
    constexpr Guid(std::uint64_t inFirstWord, std::uint64_t inSecondWord) noexcept : mWords{inFirstWord, inSecondWord}
    {
    }

    /// Constructs from the eleven numbers of its string form: {20974874-84a4-4245-9372-b24a16498199} is
    /// Guid(0x20974874, 0x84a4, 0x4245, 0x93, 0x72, 0xb2, 0x4a, 0x16, 0x49, 0x81, 0x99).
    constexpr Guid(std::uint32_t inData1, std::uint16_t inData2, std::uint16_t inData3, std::uint8_t in0,
                   std::uint8_t in1, std::uint8_t in2, std::uint8_t in3, std::uint8_t in4, std::uint8_t in5,
                   std::uint8_t in6, std::uint8_t in7) noexcept
        : mWords{std::uint64_t{inData1} | std::uint64_t{inData2} << 32 | std::uint64_t{inData3} << 48,
                 std::uint64_t{in0} | std::uint64_t{in1} << 8 | std::uint64_t{in2} << 16 | std::uint64_t{in3} << 24
                     | std::uint64_t{in4} << 32 | std::uint64_t{in5} << 40 | std::uint64_t{in6} << 48
                     | std::uint64_t{in7} << 56}
    {
    }

    /// Returns a new random identifier (version 4) from the system's random source. Throws std::system_error if the
    /// system returns no random bytes. Thread-safe.
    TVXCORE_API static Guid CreateUnique();

    /// Returns "{20974874-84a4-4245-9372-b24a16498199}": braces, lower-case digits. Every character is valid in a file
    /// name.
    TVXCORE_API UTF16String AsString() const;

    constexpr std::uint64_t FirstWord() const noexcept { return mWords[0]; }  ///< bytes 0 to 7, little-endian
    constexpr std::uint64_t SecondWord() const noexcept { return mWords[1]; } ///< bytes 8 to 15

    friend constexpr bool operator==(const Guid& inLeft, const Guid& inRight) noexcept
    {
        return inLeft.mWords[0] == inRight.mWords[0] && inLeft.mWords[1] == inRight.mWords[1];
    }

    friend constexpr bool operator!=(const Guid& inLeft, const Guid& inRight) noexcept { return !(inLeft == inRight); }

    /// Orders by the first word, then the second. The order is strict and total, and differs from that of the strings
    /// that AsString returns.
    friend constexpr bool operator<(const Guid& inLeft, const Guid& inRight) noexcept
    {
        return inLeft.mWords[0] != inRight.mWords[0] ? inLeft.mWords[0] < inRight.mWords[0]
                                                     : inLeft.mWords[1] < inRight.mWords[1];
    }

private:
    std::uint64_t mWords[2] = {0, 0};
};

static_assert(sizeof(Guid) == 16, "the identifier is the whole state");

/// Writes the string that AsString returns. A template, so that a host's own operator takes precedence.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& ioStream, const Guid& inGuid)
{
    return ioStream << inGuid.AsString();
}

namespace Internal {

constexpr std::uint8_t HexDigit(char inDigit)
{
    if (inDigit >= '0' && inDigit <= '9') {
        return static_cast<std::uint8_t>(inDigit - '0');
    }
    if (inDigit >= 'a' && inDigit <= 'f') {
        return static_cast<std::uint8_t>(inDigit - 'a' + 10);
    }
    if (inDigit >= 'A' && inDigit <= 'F') {
        return static_cast<std::uint8_t>(inDigit - 'A' + 10);
    }
    Internal::ThrowInvalidArgument("the identifier contains a character that is not a hexadecimal digit");
}

/// Returns the byte that two hexadecimal digits encode.
constexpr std::uint8_t HexByte(const char* inDigits)
{
    return static_cast<std::uint8_t>(HexDigit(inDigits[0]) * 16 + HexDigit(inDigits[1]));
}

constexpr std::uint16_t HexWord(const char* inDigits)
{
    return static_cast<std::uint16_t>(HexByte(inDigits) * 256 + HexByte(inDigits + 2));
}

/// Parses the 36 characters of a string form without braces.
constexpr Guid ParseGuid(const char* inText)
{
    for (const int dash : {8, 13, 18, 23}) {
        if (inText[dash] != '-') {
            Internal::ThrowInvalidArgument("the identifier lacks a dash");
        }
    }
    const std::uint32_t data1 = std::uint32_t{HexWord(inText)} << 16 | HexWord(inText + 4);
    return Guid(data1, HexWord(inText + 9), HexWord(inText + 14), HexByte(inText + 19), HexByte(inText + 21),
                HexByte(inText + 24), HexByte(inText + 26), HexByte(inText + 28), HexByte(inText + 30),
                HexByte(inText + 32), HexByte(inText + 34));
}

} // namespace Internal
} // namespace utility

namespace literals {

/// Parses the string form, with or without braces, with digits of either case. A malformed literal does not compile as
/// a constexpr constant, and throws std::invalid_argument elsewhere.
constexpr utility::Guid operator""_guid(const char* inText, std::size_t inLength)
{
    if (inLength == 38 && inText[0] == '{' && inText[37] == '}') {
        return utility::Internal::ParseGuid(inText + 1);
    }
    if (inLength != 36) {
        utility::Internal::ThrowInvalidArgument("the identifier has the wrong length");
    }
    return utility::Internal::ParseGuid(inText);
}

} // namespace literals
} // namespace tvxcore

/// The hash of an identifier, for unordered containers. Never throws.
template <>
struct std::hash<tvxcore::utility::Guid>
{
    std::size_t operator()(const tvxcore::utility::Guid& inGuid) const noexcept
    {
        // Odd factors, so that identifiers that differ in one word, or have both words exchanged, rarely collide.
        return static_cast<std::size_t>((inGuid.FirstWord() ^ inGuid.FirstWord() >> 32) * 0x9E3779B97F4A7C15u
                                        + inGuid.SecondWord() * 0xC2B2AE3D27D4EB4Fu);
    }
};
