#include "LinuxCodePageTables.h"

#include <array>

namespace ORL {
namespace Linux {

namespace {

#include "Tables/CodePage1250.inc"
#include "Tables/CodePage1251.inc"
#include "Tables/CodePage1252.inc"
#include "Tables/CodePage1253.inc"
#include "Tables/CodePage1254.inc"
#include "Tables/CodePage1255.inc"
#include "Tables/CodePage1256.inc"
#include "Tables/CodePage1257.inc"
#include "Tables/CodePage1258.inc"
#include "Tables/CodePage437.inc"
#include "Tables/CodePage874.inc"
#include "Tables/CodePage932.inc"
#include "Tables/CodePage936.inc"
#include "Tables/CodePage949.inc"
#include "Tables/CodePage950.inc"

constexpr std::size_t kBytes = 256;
constexpr std::size_t kFirstTrail = 0x40;
constexpr std::size_t kTrails = 0xFE - kFirstTrail + 1;
constexpr std::size_t kIndexed = 0x10000 / 64;

// The generated tables are compact. From them the compiler derives the tables below, which are faster to look up, and
// emits only those.

template <class Number>
constexpr std::array<std::uint16_t, kIndexed + 1> OffsetsOf(const Number (&inIndex)[kIndexed])
{
    std::array<std::uint16_t, kIndexed + 1> offsets{};
    for (std::size_t i = 0; i < kIndexed; ++i) {
        offsets[i] = static_cast<std::uint16_t>((inIndex[i] - i) * 64);
    }
    return offsets;
}

constexpr unsigned FirstSameOf(const std::uint16_t (&inUnits)[kBytes])
{
    unsigned first = kBytes;
    while (first > 0x80 && inUnits[first - 1] == first - 1) {
        --first;
    }
    return first;
}

// The generated row numbers begin at 1, and 0 means that a byte is not a lead byte. Row 1 of the page contains only
// zeros, so each lead byte's row number increases by one.
constexpr std::array<std::uint16_t, kBytes> RowsOf(const std::uint8_t (&inRows)[kBytes])
{
    std::array<std::uint16_t, kBytes> rows{};
    for (std::size_t i = 0; i < kBytes; ++i) {
        rows[i] = static_cast<std::uint16_t>((inRows[i] + 1) * DoubleBytePage::kRow);
    }
    return rows;
}

constexpr std::size_t kHighBytes = kBytes / 2;

constexpr std::array<std::uint8_t, kHighBytes> RowsOfHigh(const std::uint8_t (&inRows)[kBytes])
{
    std::array<std::uint8_t, kHighBytes> rows{};
    for (std::size_t i = 0; i < kHighBytes; ++i) {
        const std::uint8_t row = inRows[kHighBytes + i];
        rows[i] = static_cast<std::uint8_t>(row != 0 ? row + 1 : 0);
    }
    return rows;
}

// A trail byte outside the generated rows maps to the default character.
template <std::size_t Pairs>
constexpr std::array<std::uint16_t, (Pairs / kTrails + 2) * DoubleBytePage::kRow + 1>
UnitsOf(const std::uint16_t (&inSingles)[kBytes], const std::uint8_t (&inRows)[kBytes],
        const std::uint16_t (&inPairs)[Pairs])
{
    std::array<std::uint16_t, (Pairs / kTrails + 2) * DoubleBytePage::kRow + 1> units{};
    for (std::size_t lead = 0; lead < kBytes; ++lead) {
        units[lead] = inSingles[lead];
        for (std::size_t trail = 1; inRows[lead] != 0 && trail < DoubleBytePage::kRow; ++trail) {
            const std::size_t column = trail - kFirstTrail; // wraps to a large number below kFirstTrail
            units[(inRows[lead] + 1u) * DoubleBytePage::kRow + trail] =
                column < kTrails ? inPairs[(inRows[lead] - 1u) * kTrails + column] : inSingles[lead];
        }
    }
    return units;
}

template <std::size_t Codes>
constexpr std::array<std::uint16_t, Codes + 1> WithOneMore(const std::uint16_t (&inCodes)[Codes])
{
    std::array<std::uint16_t, Codes + 1> codes{};
    for (std::size_t i = 0; i < Codes; ++i) {
        codes[i] = inCodes[i];
    }
    return codes;
}

#define ORL_SINGLE_BYTE_PAGE(number)                                                                                   \
  constexpr auto kOffsets##number = OffsetsOf(kIndex##number);                                                         \
  constexpr SingleBytePage kPage##number = {                                                                           \
      kSingles##number, {kOffsets##number.data(), kBlocks##number}, FirstSameOf(kSingles##number)};
#define ORL_DOUBLE_BYTE_PAGE(number)                                                                                   \
  constexpr auto kOffsets##number = OffsetsOf(kIndex##number);                                                         \
  constexpr auto kCodes##number = WithOneMore(kBlocks##number);                                                        \
  constexpr auto kRowOffsets##number = RowsOf(kRows##number);                                                          \
  constexpr auto kRowNumbers##number = RowsOfHigh(kRows##number);                                                      \
  constexpr auto kUnits##number = UnitsOf(kSingles##number, kRows##number, kPairs##number);                            \
  constexpr DoubleBytePage kPage##number = {kUnits##number.data(),                                                     \
                                            kRowOffsets##number.data(),                                                \
                                            kRowNumbers##number.data(),                                                \
                                            {kOffsets##number.data(), kCodes##number.data()}};

ORL_SINGLE_BYTE_PAGE(437)
ORL_SINGLE_BYTE_PAGE(874)
ORL_DOUBLE_BYTE_PAGE(932)
ORL_DOUBLE_BYTE_PAGE(936)
ORL_DOUBLE_BYTE_PAGE(949)
ORL_DOUBLE_BYTE_PAGE(950)
ORL_SINGLE_BYTE_PAGE(1250)
ORL_SINGLE_BYTE_PAGE(1251)
ORL_SINGLE_BYTE_PAGE(1252)
ORL_SINGLE_BYTE_PAGE(1253)
ORL_SINGLE_BYTE_PAGE(1254)
ORL_SINGLE_BYTE_PAGE(1255)
ORL_SINGLE_BYTE_PAGE(1256)
ORL_SINGLE_BYTE_PAGE(1257)
ORL_SINGLE_BYTE_PAGE(1258)

#undef ORL_SINGLE_BYTE_PAGE
#undef ORL_DOUBLE_BYTE_PAGE

constexpr CodePageTable kPages[] = {
    {1252, &kPage1252, nullptr}, {932, nullptr, &kPage932},   {949, nullptr, &kPage949},   {936, nullptr, &kPage936},
    {950, nullptr, &kPage950},   {1250, &kPage1250, nullptr}, {1251, &kPage1251, nullptr}, {1253, &kPage1253, nullptr},
    {1254, &kPage1254, nullptr}, {1255, &kPage1255, nullptr}, {1256, &kPage1256, nullptr}, {1257, &kPage1257, nullptr},
    {1258, &kPage1258, nullptr}, {874, &kPage874, nullptr},   {437, &kPage437, nullptr},
};

} // namespace

const CodePageTable* FindCodePage(unsigned int inNumber) noexcept
{
    for (const CodePageTable& page : kPages) {
        if (page.mNumber == inNumber) {
            return &page;
        }
    }
    return nullptr;
}

} // namespace Linux
} // namespace ORL
