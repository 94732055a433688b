// Compares every kernel that this processor supports with the plain loop.
#include <Text/Utf.h>
#include <Text/UtfCharacter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <vector>

using namespace tvxcore::utf;

namespace {

using Bytes = std::vector<unsigned char>;
using Units = std::vector<unsigned short>;

constexpr unsigned short kUnitBehind = 0xABCD;
constexpr unsigned char kByteBehind = 0xEE;

// Converts between buffers of exactly the required size, so that a sanitizer detects every access beyond them.
Units Convert(ToUTF16Function* inKernel, const Bytes& inText)
{
    const Bytes exact(inText);
    Units out(UTF16Bound(inText.size()), kUnitBehind);
    out.resize(inKernel(exact.data(), exact.size(), out.data()));
    return out;
}

Bytes Convert(ToUTF8Function* inKernel, const Units& inText)
{
    const Units exact(inText);
    Bytes out(UTF8Bound(inText.size()), kByteBehind);
    out.resize(inKernel(exact.data(), exact.size(), out.data()));
    return out;
}

template <class Function>
void ForEachKernel(Function inFunction)
{
    for (const Kernel& kernel : kKernels) {
        if (kernel.mIsSupported()) {
            SCOPED_TRACE(kernel.mName);
            inFunction(kernel);
        }
    }
}

void ExpectAgreement(const Bytes& inText)
{
    const Units expected = Convert(ToUTF16Plain, inText);
    for (const Kernel& kernel : kKernels) {
        if (kernel.mIsSupported() && Convert(kernel.mToUTF16, inText) != expected) {
            ADD_FAILURE() << kernel.mName << " differs at " << inText.size() << " bytes";
        }
    }
}

void ExpectAgreement(const Units& inText)
{
    const Bytes expected = Convert(ToUTF8Plain, inText);
    for (const Kernel& kernel : kKernels) {
        if (kernel.mIsSupported() && Convert(kernel.mToUTF8, inText) != expected) {
            ADD_FAILURE() << kernel.mName << " differs at " << inText.size() << " units";
        }
    }
}

void Append(Bytes& ioText, std::uint32_t inPoint)
{
    unsigned char bytes[4];
    ioText.insert(ioText.end(), bytes, WriteUTF8(inPoint, bytes));
}

void Append(Units& ioText, std::uint32_t inPoint)
{
    unsigned short units[2];
    ioText.insert(ioText.end(), units, WriteUTF16(inPoint, units));
}

bool IsCharacter(std::uint32_t inPoint)
{
    return inPoint > 0xFFFF || !IsSurrogate(inPoint);
}

// Returns a code point of one of the chosen length classes, for uniform or mixed strings.
std::uint32_t RandomPoint(std::mt19937& ioRandom, unsigned inClasses)
{
    static constexpr std::uint32_t kFirst[] = {0x01, 0x80, 0x800, 0x10000};
    static constexpr std::uint32_t kLast[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
    for (;;) {
        const unsigned kind = static_cast<unsigned>(ioRandom() % 4);
        if ((inClasses >> kind & 1) != 0) {
            const std::uint32_t point =
                kFirst[kind] + static_cast<std::uint32_t>(ioRandom()) % (kLast[kind] - kFirst[kind] + 1);
            if (IsCharacter(point)) {
                return point;
            }
        }
    }
}

} // namespace

TEST(UtfKernels, AtLeastTheBaselineRunsHere)
{
    std::size_t supported = 0;
    ForEachKernel([&](const Kernel&) { ++supported; });
    EXPECT_GE(supported, 2u);
    EXPECT_LE(supported, kKernelCount);
}

TEST(UtfKernels, EveryCodePoint_AtEveryPlaceOfAStep)
{
    // Code points of one length follow each other at changing offsets in a vector step; the lead shifts all of them.
    for (std::size_t lead = 0; lead < 3; ++lead) {
        Bytes bytes(lead, 'x');
        Units units(lead, 'x');
        for (std::uint32_t point = 0; point <= 0x10FFFF; ++point) {
            if (IsCharacter(point)) {
                Append(bytes, point);
                Append(units, point);
            }
        }
        ForEachKernel([&](const Kernel& kernel) {
            EXPECT_TRUE(Convert(kernel.mToUTF16, bytes) == units);
            EXPECT_TRUE(Convert(kernel.mToUTF8, units) == bytes);
        });
    }
}

// Strings and buffers that end near the end of a page, where vector steps take a different path.
TEST(UtfKernels, TextsAndBuffersAroundTheEndOfAPage_AtEveryPlace)
{
    constexpr std::size_t kPage = 4096;
    alignas(kPage) static unsigned char sFrom[2 * kPage];
    alignas(kPage) static unsigned char sTo[2 * kPage];
    std::mt19937 random(2);
    for (std::size_t length = 1; length < 70; length += 3) {
        Bytes bytes;
        Units units;
        while (units.size() < length) {
            const std::uint32_t point = RandomPoint(random, length % 2 == 0 ? 1 : 15);
            Append(bytes, point);
            Append(units, point);
        }
        for (std::size_t back = 0; back <= 4 * length; back += 2) {
            ForEachKernel([&](const Kernel& kernel) {
                std::fill(std::begin(sTo), std::end(sTo), kByteBehind);
                unsigned char* const from = sFrom + kPage - back;
                unsigned char* const to = sTo + kPage - back;
                std::copy(bytes.begin(), bytes.end(), from);
                auto* const toUnits = reinterpret_cast<unsigned short*>(to);
                ASSERT_EQ(units.size(), kernel.mToUTF16(from, bytes.size(), toUnits));
                EXPECT_TRUE(std::equal(units.begin(), units.end(), toUnits)) << length << ", " << back << " before";
                EXPECT_EQ(kByteBehind, to[2 * UTF16Bound(bytes.size())]);
                std::fill(std::begin(sTo), std::end(sTo), kByteBehind);
                auto* const fromUnits = reinterpret_cast<unsigned short*>(from);
                std::copy(units.begin(), units.end(), fromUnits);
                ASSERT_EQ(bytes.size(), kernel.mToUTF8(fromUnits, units.size(), to));
                EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), to)) << length << ", " << back << " before";
                EXPECT_EQ(kByteBehind, to[UTF8Bound(units.size())]);
            });
        }
    }
}

TEST(UtfKernels, TextsOfEachKindAndMixture_AtEveryLength)
{
    std::mt19937 random(1);
    for (unsigned classes = 1; classes < 16; ++classes) {
        for (std::size_t length = 0; length < 200; ++length) {
            Bytes bytes;
            Units units;
            for (std::size_t i = 0; i < length; ++i) {
                const std::uint32_t point = RandomPoint(random, classes);
                Append(bytes, point);
                Append(units, point);
            }
            ForEachKernel([&](const Kernel& kernel) {
                EXPECT_TRUE(Convert(kernel.mToUTF16, bytes) == units) << classes << ' ' << length;
                EXPECT_TRUE(Convert(kernel.mToUTF8, units) == bytes) << classes << ' ' << length;
            });
        }
    }
}

TEST(UtfKernels, OneWrongByteAtEveryPlace_IsReplacedAlike)
{
    std::mt19937 random(2);
    for (unsigned classes = 1; classes < 16; ++classes) {
        Bytes text;
        while (text.size() < 150) {
            Append(text, RandomPoint(random, classes));
        }
        for (std::size_t place = 0; place < text.size(); ++place) {
            static constexpr unsigned char kWrong[] = {0x00, 0x41, 0x80, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF,
                                                       0xE0, 0xE1, 0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
            for (const unsigned char wrong : kWrong) {
                Bytes changed = text;
                changed[place] = wrong;
                ExpectAgreement(changed);
            }
        }
    }
}

TEST(UtfKernels, TextCutAtEveryByte_IsReplacedAlike)
{
    std::mt19937 random(3);
    for (unsigned classes = 1; classes < 16; ++classes) {
        Bytes text;
        while (text.size() < 200) {
            Append(text, RandomPoint(random, classes));
        }
        for (std::size_t first = 0; first < 5; ++first) {
            for (std::size_t last = first; last < text.size(); ++last) {
                ExpectAgreement(Bytes(text.begin() + static_cast<std::ptrdiff_t>(first),
                                      text.begin() + static_cast<std::ptrdiff_t>(last)));
            }
        }
    }
}

TEST(UtfKernels, EveryPairOfBytesBehindAPrefix_IsReplacedAlike)
{
    for (const char* prefix : {"", "\xE0", "\xED", "\xF0", "\xF4", "\xF0\x9F", "\xC3", "\xF5", "\xF0\x9F\x98"}) {
        for (unsigned first = 0; first < 256; ++first) {
            Bytes text;
            for (unsigned second = 0; second < 256; ++second) {
                for (const char* byte = prefix; *byte != 0; ++byte) {
                    text.push_back(static_cast<unsigned char>(*byte));
                }
                text.push_back(static_cast<unsigned char>(first));
                text.push_back(static_cast<unsigned char>(second));
                text.push_back('.');
            }
            ExpectAgreement(text);
        }
    }
}

TEST(UtfKernels, RandomBytes_AreReplacedAlike)
{
    std::mt19937 random(4);
    for (int i = 0; i < 20000; ++i) {
        Bytes text(random() % 200);
        std::generate(text.begin(), text.end(), [&] { return static_cast<unsigned char>(random()); });
        ExpectAgreement(text);
    }
}

TEST(UtfKernels, RandomUnitsWithManySurrogates_AreReplacedAlike)
{
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        Units text(random() % 120);
        std::generate(text.begin(), text.end(), [&] {
            const unsigned kind = static_cast<unsigned>(random() % 4);
            const unsigned value = static_cast<unsigned>(random());
            return static_cast<unsigned short>(kind == 0 ? value : kind == 1 ? value & 0x7F : 0xD800 | (value & 0x7FF));
        });
        ExpectAgreement(text);
    }
}

TEST(UtfKernels, UnpairedSurrogateAtEveryPlace_IsReplacedAlike)
{
    for (std::size_t length = 1; length < 100; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            static constexpr unsigned short kWrong[] = {0xD800, 0xDBFF, 0xDC00, 0xDFFF};
            for (const unsigned short wrong : kWrong) {
                for (const std::uint32_t other : {0x41u, 0xE9u, 0x4E2Du}) {
                    Units text(length, static_cast<unsigned short>(other));
                    text[place] = wrong;
                    ExpectAgreement(text);
                }
                Units pairs;
                for (std::size_t i = 0; i < length; ++i) {
                    Append(pairs, 0x1F600);
                }
                pairs[place] = wrong;
                ExpectAgreement(pairs);
            }
        }
    }
}

TEST(UtfKernels, NothingIsWrittenBehindTheBound)
{
    std::mt19937 random(6);
    for (int i = 0; i < 3000; ++i) {
        Bytes bytes;
        Units units;
        const std::size_t length = random() % 100;
        const unsigned classes = static_cast<unsigned>(random() % 15 + 1);
        for (std::size_t k = 0; k < length; ++k) {
            const std::uint32_t point = RandomPoint(random, classes);
            Append(bytes, point);
            Append(units, point);
        }
        ForEachKernel([&](const Kernel& kernel) {
            Units outUnits(UTF16Bound(bytes.size()) + 64, kUnitBehind);
            kernel.mToUTF16(bytes.data(), bytes.size(), outUnits.data());
            Bytes outBytes(UTF8Bound(units.size()) + 64, kByteBehind);
            kernel.mToUTF8(units.data(), units.size(), outBytes.data());
            for (std::size_t k = 0; k < 64; ++k) {
                ASSERT_EQ(kUnitBehind, outUnits[UTF16Bound(bytes.size()) + k]);
                ASSERT_EQ(kByteBehind, outBytes[UTF8Bound(units.size()) + k]);
            }
        });
    }
}

TEST(UtfPieces, CuttingIllFormedTextIntoPieces_ConvertsToTheSame)
{
    std::mt19937 random(7);
    static constexpr unsigned char kBytes[] = {0x41, 0x80, 0xBF, 0xC3, 0xE0, 0xE2, 0xED, 0xF0, 0xF4, 0xA0, 0x90, 0x9F};
    for (int i = 0; i < 20000; ++i) {
        Bytes text(random() % 60);
        std::generate(text.begin(), text.end(), [&] { return kBytes[random() % sizeof(kBytes)]; });
        const std::size_t limit = 4 + random() % 12;
        Units joined;
        for (std::size_t done = 0; done < text.size();) {
            const std::size_t piece = PieceOfUTF8(text.data() + done, text.size() - done, limit);
            ASSERT_GT(piece, 0u);
            ASSERT_LE(piece, limit);
            const Units part = Convert(ToUTF16Plain, Bytes(text.begin() + static_cast<std::ptrdiff_t>(done),
                                                           text.begin() + static_cast<std::ptrdiff_t>(done + piece)));
            joined.insert(joined.end(), part.begin(), part.end());
            done += piece;
        }
        EXPECT_TRUE(joined == Convert(ToUTF16Plain, text));
    }
}
