// 16-byte identifiers of classes, interfaces and categories.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace tvxcore {
namespace utility {

/// A plain 16-byte value. The memory of a Guid is the identifier in the byte order of a Windows GUID, and may be read
/// as two 64-bit little-endian words. A constexpr constant needs no initialisation at load. Only CreateUnique and
/// AsString throw.
class Guid
{
public:
    /// Constructs an identifier whose bits are all zero.
    constexpr Guid() noexcept = default;

    /// Constructs from the two words of its memory.
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

} // namespace utility
} // namespace tvxcore
