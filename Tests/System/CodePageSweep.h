// Runs every conversion of a code page and combines the results into one number: two sets of results that differ in one
// unit have different numbers.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace ORLTest {

/// Combines results into a 64-bit FNV-1a hash.
class AnswerDigest
{
public:
    template <class Text>
    void Add(const Text& inText)
    {
        AddNumber(inText.size());
        for (const auto element : inText) {
            AddNumber(static_cast<std::uint16_t>(element) & (sizeof(element) == 1 ? 0xFFu : 0xFFFFu));
        }
    }

    std::uint64_t Value() const noexcept { return mValue; }

private:
    void AddNumber(std::size_t inNumber) noexcept
    {
        for (int shift = 0; shift < 32; shift += 8) {
            mValue = (mValue ^ ((inNumber >> shift) & 0xFF)) * 0x100000001B3u;
        }
    }

    std::uint64_t mValue = 0xCBF29CE484222325u;
};

/// A random number generator that produces the same numbers on every machine.
class SteadyNumbers
{
public:
    unsigned Below(unsigned inLimit) noexcept
    {
        mState = mState * 6364136223846793005u + 1442695040888963407u;
        return static_cast<unsigned>(mState >> 33) % inLimit;
    }

private:
    std::uint64_t mState = 20261122;
};

/// Returns a string of up to 100 elements, with runs of ASCII of every length between elements below inLimit.
template <class Text>
Text RandomText(SteadyNumbers& ioNumbers, unsigned inLimit)
{
    Text text;
    for (unsigned left = 1 + ioNumbers.Below(100); left != 0; --left) {
        const bool isASCII = ioNumbers.Below(16) != 0 ? !text.empty() && static_cast<unsigned>(text.back()) < 0x80
                                                      : ioNumbers.Below(2) != 0;
        text.push_back(static_cast<typename Text::value_type>(ioNumbers.Below(isASCII ? 0x80 : inLimit)));
    }
    return text;
}

constexpr int kRandomTexts = 20000;

/// Converts every byte, every pair of bytes, and random strings. inToUnits takes a std::string.
template <class ToUnits>
std::uint64_t DigestOfUnits(ToUnits inToUnits)
{
    AnswerDigest digest;
    for (int byte = 0; byte < 256; ++byte) {
        digest.Add(inToUnits(std::string(1, static_cast<char>(byte))));
    }
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            digest.Add(inToUnits(std::string{static_cast<char>(first), static_cast<char>(second)}));
        }
    }
    SteadyNumbers numbers;
    for (int i = 0; i < kRandomTexts; ++i) {
        digest.Add(inToUnits(RandomText<std::string>(numbers, 256)));
    }
    return digest.Value();
}

/// Converts every unit and random strings. inToBytes takes a UTF16String.
template <class ToBytes>
std::uint64_t DigestOfBytes(ToBytes inToBytes)
{
    AnswerDigest digest;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        digest.Add(inToBytes(UTF16String(1, static_cast<unsigned short>(unit))));
    }
    SteadyNumbers numbers;
    for (int i = 0; i < kRandomTexts; ++i) {
        digest.Add(inToBytes(RandomText<UTF16String>(numbers, 0x10000)));
    }
    return digest.Value();
}

/// The results of DigestOfUnits and DigestOfBytes for a page.
struct PageDigest
{
    unsigned mPage;
    std::uint64_t mUnits;
    std::uint64_t mBytes;
};

// Recorded from Windows' own conversions, MultiByteToWideChar and WideCharToMultiByte with flags 0.
constexpr PageDigest kDigests[] = {
    {437, 0x578AC5F708978764u, 0x62F08CE942421B25u},  {874, 0x746B2D4889231F29u, 0x1F076F1CD9CC48DCu},
    {932, 0xFD1629646C1C56D5u, 0x21DF44FA6AB3E8DBu},  {936, 0x7DBEE947C4CDECE5u, 0x6647587B840C2511u},
    {949, 0x2A8478CC0E3E006Fu, 0xC492CC5F4F417A94u},  {950, 0x6CA4BB3303DC5F35u, 0x80E4F212978097C6u},
    {1250, 0x68BCF673DD545AF7u, 0xE2097819EEF1C505u}, {1251, 0x7EC4ED129AEB7ADEu, 0x3007BA8313FA0586u},
    {1252, 0x84979A25F9C4B96Eu, 0xE4E76A6BC146956Bu}, {1253, 0xF62ADDC57DF12375u, 0x69D01D797C8CA55Cu},
    {1254, 0x7F7C2382144BB928u, 0x9102E020ABA95796u}, {1255, 0xFD63DBA38F001333u, 0xB1BC158FC5F45C56u},
    {1256, 0xD4A75961632B0C56u, 0xA53BCFDCD88953AFu}, {1257, 0x6A06DC0A4F070CD5u, 0x3638A8E583A1CDCAu},
    {1258, 0xA34636B2E6E297EFu, 0x3DAAB5E71D200266u},
};

constexpr unsigned kCodePages[] = {437, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

} // namespace ORLTest
