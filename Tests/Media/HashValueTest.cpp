// Compares MixHash with the published lookup2, and tests the text form of HashValue.
#include <ORLHashValue.h>

#include <TextHelpers.h>
#include <tvxcore/StringStream.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace ORL;
using namespace ORLTest;

// The table, read through the symbol that hosts link to. That symbol is a reference, represented as a pointer.
extern const std::vector<unsigned char>* const sExportedTable __asm__("_ZN3ORL12CRCHashValue9sCRCTableE");

namespace {

HashValue Mixed(HashValue inStart, const std::string& inBytes)
{
    MixHash::Mix(inStart, inBytes.data(), inBytes.size());
    return inStart;
}

struct Lookup2
{
    std::uint32_t a, b, c;

    void Mix()
    {
        a -= b;
        a -= c;
        a ^= c >> 13;
        b -= c;
        b -= a;
        b ^= a << 8;
        c -= a;
        c -= b;
        c ^= b >> 13;
        a -= b;
        a -= c;
        a ^= c >> 12;
        b -= c;
        b -= a;
        b ^= a << 16;
        c -= a;
        c -= b;
        c ^= b >> 5;
        a -= b;
        a -= c;
        a ^= c >> 3;
        b -= c;
        b -= a;
        b ^= a << 10;
        c -= a;
        c -= b;
        c ^= b >> 15;
    }
};

// Computes the hash byte by byte, as in the publication of 1996.
std::uint32_t PublishedLookup2(const std::string& inBytes, std::uint32_t inInitial)
{
    const auto byte = [&](std::size_t inAt) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(inBytes[inAt]));
    };
    Lookup2 state{0x9e3779b9, 0x9e3779b9, inInitial};
    std::size_t at = 0;
    std::size_t left = inBytes.size();
    for (; left >= 12; left -= 12, at += 12) {
        state.a += byte(at) + (byte(at + 1) << 8) + (byte(at + 2) << 16) + (byte(at + 3) << 24);
        state.b += byte(at + 4) + (byte(at + 5) << 8) + (byte(at + 6) << 16) + (byte(at + 7) << 24);
        state.c += byte(at + 8) + (byte(at + 9) << 8) + (byte(at + 10) << 16) + (byte(at + 11) << 24);
        state.Mix();
    }
    state.c += static_cast<std::uint32_t>(inBytes.size());
    switch (left) {
    case 11: state.c += byte(at + 10) << 24; [[fallthrough]];
    case 10: state.c += byte(at + 9) << 16; [[fallthrough]];
    case 9: state.c += byte(at + 8) << 8; [[fallthrough]];
    case 8: state.b += byte(at + 7) << 24; [[fallthrough]];
    case 7: state.b += byte(at + 6) << 16; [[fallthrough]];
    case 6: state.b += byte(at + 5) << 8; [[fallthrough]];
    case 5: state.b += byte(at + 4); [[fallthrough]];
    case 4: state.a += byte(at + 3) << 24; [[fallthrough]];
    case 3: state.a += byte(at + 2) << 16; [[fallthrough]];
    case 2: state.a += byte(at + 1) << 8; [[fallthrough]];
    case 1: state.a += byte(at); break;
    default: break;
    }
    state.Mix();
    return state.c;
}

HashValue Expected(const HashValue& inStart, const std::string& inBytes)
{
    Lookup2 spread{PublishedLookup2(inBytes, inStart.GetWord(0)), inStart.GetWord(1), inStart.GetWord(2)};
    spread.Mix();
    return HashValue(spread.a, spread.b, spread.c);
}

// Reverses the mixing steps to recover the word from which the three words were derived.
std::uint32_t InnerHash(const HashValue& inHash)
{
    std::uint32_t a = inHash.GetWord(0);
    std::uint32_t b = inHash.GetWord(1);
    std::uint32_t c = inHash.GetWord(2);
    c = (c ^ (b >> 15)) + a + b;
    b = (b ^ (a << 10)) + c + a;
    a = (a ^ (c >> 3)) + b + c;
    c = (c ^ (b >> 5)) + a + b;
    b = (b ^ (a << 16)) + c + a;
    a = (a ^ (c >> 12)) + b + c;
    c = (c ^ (b >> 13)) + a + b;
    b = (b ^ (a << 8)) + c + a;
    a = (a ^ (c >> 13)) + b + c;
    return a;
}

std::string RandomBytes(std::size_t inCount)
{
    std::mt19937 random(static_cast<unsigned>(inCount) + 1);
    std::string bytes(inCount, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

HashValue Read(const std::u16string& inText, HashValue inBefore = HashValue(1, 2, 3))
{
    tvxcore::iUTF16StringStream stream(Units(inText));
    stream >> inBefore;
    return inBefore;
}

UTF16String Written(const HashValue& inHash)
{
    tvxcore::oUTF16StringStream stream;
    stream << inHash;
    return stream.str();
}

} // namespace

TEST(MixHash, InnerHash_GivesLookup2sPublishedValues)
{
    EXPECT_EQ(0xBD49D10Du, InnerHash(Mixed(HashValue(0, 0, 0), "")));
    EXPECT_EQ(447289830u, InnerHash(Mixed(HashValue(0, 0, 0), "hello world")));
}

TEST(MixHash, EveryLengthFrom0To64_IsLookup2AndOneMixStep)
{
    const HashValue starts[] = {HashValue(0, 0, 0), HashValue(1, 2, 3), HashValue(0xFFFFFFFF, 0x80000000, 0x12345678)};
    for (const HashValue& start : starts) {
        for (std::size_t length = 0; length <= 64; ++length) {
            const std::string bytes = RandomBytes(length);
            EXPECT_EQ(Expected(start, bytes), Mixed(start, bytes)) << "length " << length;
            EXPECT_EQ(PublishedLookup2(bytes, start.GetWord(0)), InnerHash(Mixed(start, bytes))) << "length " << length;
        }
    }
}

TEST(MixHash, LongBlocks_AreLookup2AndOneMixStep)
{
    for (const std::size_t length : {1000u, 4096u, 65537u, 1000000u}) {
        const std::string bytes = RandomBytes(length);
        EXPECT_EQ(Expected(HashValue(7, 8, 9), bytes), Mixed(HashValue(7, 8, 9), bytes)) << "length " << length;
    }
}

TEST(MixHash, NoBytes_ChangeTheHash)
{
    EXPECT_NE(HashValue(0, 0, 0), Mixed(HashValue(0, 0, 0), ""));
    HashValue hash(0, 0, 0);
    MixHash::Mix(hash, nullptr, 0);
    EXPECT_EQ(Mixed(HashValue(0, 0, 0), ""), hash);
}

TEST(MixHash, AlignedAndUnalignedAddresses_GiveTheSameHash)
{
    alignas(16) char room[128];
    for (std::size_t length = 0; length <= 64; ++length) {
        const std::string bytes = RandomBytes(length);
        const HashValue expected = Expected(HashValue(4, 5, 6), bytes);
        for (std::size_t offset = 0; offset < 16; ++offset) {
            std::memset(room, 0x5A, sizeof(room));
            std::memcpy(room + offset, bytes.data(), length);
            HashValue hash(4, 5, 6);
            MixHash::Mix(hash, room + offset, length);
            EXPECT_EQ(expected, hash) << "length " << length << ", offset " << offset;
        }
    }
}

TEST(MixHash, TwelveBytes_RunOneStepAndAddNoTail)
{
    const std::string bytes = "abcdefghijkl";
    Lookup2 state{0x9e3779b9 + 0x64636261u, 0x9e3779b9 + 0x68676665u, 0x6C6B6A69u};
    state.Mix();
    state.c += 12;
    state.Mix();
    EXPECT_EQ(state.c, InnerHash(Mixed(HashValue(0, 0, 0), bytes)));
}

TEST(MixHash, OneCallAndTwoCalls_GiveDifferentHashes)
{
    const std::string bytes = RandomBytes(24);
    const HashValue inTwo = Mixed(Mixed(HashValue(0, 0, 0), bytes.substr(0, 12)), bytes.substr(12));
    EXPECT_NE(Mixed(HashValue(0, 0, 0), bytes), inTwo);
    EXPECT_NE(Mixed(Mixed(HashValue(0, 0, 0), bytes.substr(12)), bytes.substr(0, 12)), inTwo) << "order counts";
}

TEST(MixHash, AnyBitOfTheInputOrOfTheStart_ChangesTheHash)
{
    const std::string bytes = RandomBytes(29);
    const HashValue hash = Mixed(HashValue(0, 0, 0), bytes);
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string other = bytes;
        other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_NE(hash, Mixed(HashValue(0, 0, 0), other)) << "bit " << bit;
    }
    EXPECT_NE(hash, Mixed(HashValue(1, 0, 0), bytes));
    EXPECT_NE(hash, Mixed(HashValue(0, 1, 0), bytes));
    EXPECT_NE(hash, Mixed(HashValue(0, 0, 1), bytes));
}

TEST(HashValue, IsOrderedByItsWordsInTurn)
{
    const HashValue hashes[] = {HashValue(0, 9, 9), HashValue(1, 0, 9), HashValue(1, 1, 0), HashValue(1, 1, 1)};
    for (std::size_t i = 0; i < std::size(hashes); ++i) {
        for (std::size_t j = 0; j < std::size(hashes); ++j) {
            EXPECT_EQ(i < j, hashes[i] < hashes[j]);
            EXPECT_EQ(i == j, hashes[i] == hashes[j]);
        }
    }
}

TEST(HashValueText, ThreeHexadecimalWords_AreRead)
{
    EXPECT_EQ(HashValue(0x1A, 0x2B, 0x3C), Read(u"1a:2b:3c"));
    EXPECT_EQ(HashValue(0x1A, 0x2B, 0x3C), Read(u"1a::2b:3c")) << "a run of separators counts as one";
    EXPECT_EQ(HashValue(0x1A, 0x2B, 0x3C), Read(u"  1A:2B:::3C  "));
    EXPECT_EQ(HashValue(0xFFFFFFFF, 0, 0x10), Read(u"ffffffff:0:0x10"));
}

TEST(HashValueText, WhatIsMissingOrNoNumber_IsAsTheHeaderSays)
{
    EXPECT_EQ(HashValue(0x1A, 2, 3), Read(u"1a")) << "missing words keep their values";
    EXPECT_EQ(HashValue(0x1A, 0x2B, 3), Read(u"1a:2b:"));
    EXPECT_EQ(HashValue(1, 2, 3), Read(u""));
    EXPECT_EQ(HashValue(1, 2, 3), Read(u"   "));
    EXPECT_EQ(HashValue(0, 0x2B, 0x3C), Read(u"zz:2b:3c")) << "no number is 0";
    EXPECT_EQ(HashValue(0xFFFFFFFF, 0x2B, 0x3C), Read(u"123456789:2b:3c")) << "more than 32 bits";
    EXPECT_EQ(HashValue(0x1A, 0x2B, 0x3C), Read(u"1a:2b:3c:4d")) << "the rest is ignored";
    EXPECT_EQ(HashValue(1, 0x1A, 0x2B), Read(u":1a:2b")) << "nothing before the first separator";
}

TEST(HashValueText, TheStreamsState_TellsWhetherThereWasAText)
{
    HashValue hash(1, 2, 3);
    tvxcore::iUTF16StringStream two(Units(u"1:2:3 4:5:6"));
    EXPECT_TRUE(two >> hash);
    EXPECT_EQ(HashValue(1, 2, 3), hash);
    EXPECT_TRUE(two >> hash);
    EXPECT_EQ(HashValue(4, 5, 6), hash);
    EXPECT_FALSE(two >> hash);
    EXPECT_EQ(HashValue(4, 5, 6), hash);
}

TEST(HashValueText, WhatIsWritten_ReadsBack)
{
    const HashValue hashes[] = {HashValue(0, 0, 0), HashValue(0x1A, 0x2B, 0x3C), HashValue(0xFFFFFFFF, 0xDEADBEEF, 1),
                                Mixed(HashValue(0, 0, 0), "some bytes")};
    for (const HashValue& hash : hashes) {
        tvxcore::iUTF16StringStream stream(Written(hash));
        HashValue back(9, 9, 9);
        stream >> back;
        EXPECT_EQ(hash, back) << Show(Written(hash));
    }
    EXPECT_EQ("1a:2b:3c", Show(Written(HashValue(0x1A, 0x2B, 0x3C))));
    EXPECT_EQ("0:0:ffffffff", Show(Written(HashValue(0, 0, 0xFFFFFFFF))));
}

TEST(HashValueText, FlagsOfTheStream_HaveNoInfluence)
{
    tvxcore::oUTF16StringStream stream;
    stream.width(30);
    stream.flags(std::ios_base::dec | std::ios_base::showbase | std::ios_base::uppercase);
    stream << HashValue(0xAB, 1, 2);
    EXPECT_EQ("ab:1:2", Show(stream.str()));
    EXPECT_EQ(30, stream.width());
}

TEST(CRCHashValue, TableHoldsTheLowByteOfEachEntryOfTheCRC32Table)
{
    const std::vector<unsigned char>& table = *sExportedTable;
    ASSERT_EQ(256u, table.size());
    EXPECT_EQ(0x96, table[1]) << "the low byte of 0x77073096";
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t remainder = i;
        for (int bit = 0; bit < 8; ++bit) {
            remainder = (remainder & 1) != 0 ? (remainder >> 1) ^ 0xEDB88320u : remainder >> 1;
        }
        EXPECT_EQ(remainder & 0xFF, table[i]) << i;
    }
}
