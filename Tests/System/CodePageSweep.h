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

/// A random number generator that gives the same numbers on every machine.
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

/// Returns a text of up to 100 elements, with runs of ASCII of every length between elements below inLimit.
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

/// Converts every byte, every pair of bytes, and random texts. inToUnits takes a std::string.
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

/// Converts every unit and random texts. inToBytes takes a UTF16String.
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

constexpr unsigned kCodePages[] = {437, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

} // namespace ORLTest
