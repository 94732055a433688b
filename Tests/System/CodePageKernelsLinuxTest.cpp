// Compares every conversion kernel with a conversion character by character. Inputs and results end where readable
// memory ends, so that an access past either end faults.
#include "CodePageSweep.h"

#include <Linux/CodePages/LinuxCodePageKernels.h>
#include <System/CodePageConversion.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/mman.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;
using ORL::Linux::CodePageKernel;
using ORL::Linux::DoubleBytePage;

namespace {

constexpr unsigned kDoubleBytePages[] = {932, 936, 949, 950};
constexpr std::size_t kBlock = 64; // the largest number of bytes that a form converts at a time

// Memory before a page without access.
class GuardedMemory
{
public:
    explicit GuardedMemory(std::size_t inBytes)
        : mSize((inBytes + kPage - 1) / kPage * kPage),
          mMemory(static_cast<char*>(
              ::mmap(nullptr, mSize + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        if (mMemory == MAP_FAILED || ::mprotect(mMemory + mSize, kPage, PROT_NONE) != 0) {
            throw std::runtime_error("no guarded memory");
        }
    }
    ~GuardedMemory() { ::munmap(mMemory, mSize + kPage); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    // Returns the last elements, which end inBehind bytes before the end of the memory.
    template <class Element>
    Element* Last(std::size_t inCount, std::size_t inBehind = 0) const
    {
        return reinterpret_cast<Element*>(mMemory + mSize - inBehind - inCount * sizeof(Element));
    }

private:
    static constexpr std::size_t kPage = 4096;

    std::size_t mSize;
    char* mMemory;
};

// The characters of a code page, each converted alone.
class Characters
{
public:
    explicit Characters(unsigned inPage) : mBytes(0x10000)
    {
        for (unsigned first = 0; first < 256; ++first) {
            const char lone = static_cast<char>(first);
            mSingles[first] = Internal::To16BitUnicode(std::string(1, lone), inPage).at(0);
            for (unsigned second = 0; second < 256; ++second) {
                const UTF16String units = Internal::To16BitUnicode({lone, static_cast<char>(second)}, inPage);
                mIsPair[first][second] = units.size() == 1;
                mPairs[first][second] = units.at(0);
            }
        }
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            mBytes[unit] = Internal::ToMultiByteWithCodePage(UTF16String(1, static_cast<unsigned short>(unit)), inPage);
        }
    }

    UTF16String Units(const std::string& inText) const
    {
        UTF16String units;
        for (std::size_t i = 0; i < inText.size(); ++i) {
            const auto first = static_cast<unsigned char>(inText[i]);
            const auto second = static_cast<unsigned char>(i + 1 < inText.size() ? inText[i + 1] : 0);
            const bool isPair = i + 1 < inText.size() && mIsPair[first][second];
            units.push_back(isPair ? mPairs[first][second] : mSingles[first]);
            i += isPair ? 1 : 0;
        }
        return units;
    }

    std::string Bytes(const UTF16String& inText) const
    {
        std::string bytes;
        for (const unsigned short unit : inText) {
            bytes += mBytes[unit];
        }
        return bytes;
    }

private:
    unsigned short mSingles[256];
    unsigned short mPairs[256][256];
    bool mIsPair[256][256];
    std::vector<std::string> mBytes;
};

const Characters& CharactersOf(unsigned inPage)
{
    static const Characters pages[] = {Characters(932), Characters(936), Characters(949), Characters(950)};
    return pages[std::find(std::begin(kDoubleBytePages), std::end(kDoubleBytePages), inPage) - kDoubleBytePages];
}

const DoubleBytePage& TableOf(unsigned inPage)
{
    return *ORL::Linux::FindCodePage(inPage)->mDouble;
}

class EachCodePageKernel : public testing::TestWithParam<CodePageKernel>
{
protected:
    void SetUp() override
    {
        if (!GetParam().mIsSupported()) {
            GTEST_SKIP() << "this processor lacks " << GetParam().mName;
        }
    }

    // Converts a string. The string and its result end directly before, or the given number of bytes before, a page
    // without access.
    UTF16String Units(unsigned inPage, const std::string& inText, std::size_t inBehind = 0) const
    {
        char* const text = mText.Last<char>(inText.size(), inBehind);
        std::memcpy(text, inText.data(), inText.size());
        const std::size_t count = CharactersOf(inPage).Units(inText).size();
        unsigned short* const units = mResult.Last<unsigned short>(count, inBehind / 2 * 2);
        const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
        return UTF16String(units, GetParam().mPairsToUnits(TableOf(inPage), bytes, inText.size(), units));
    }

    std::string Bytes(unsigned inPage, const UTF16String& inText, std::size_t inBehind = 0) const
    {
        unsigned short* const text = mText.Last<unsigned short>(inText.size(), inBehind / 2 * 2);
        std::copy(inText.begin(), inText.end(), text);
        const std::size_t count = CharactersOf(inPage).Bytes(inText).size();
        auto* const bytes = mResult.Last<unsigned char>(count, inBehind);
        const std::size_t written = GetParam().mPairsToBytes(TableOf(inPage), text, inText.size(), bytes);
        return std::string(reinterpret_cast<const char*>(bytes), written);
    }

    UTF16String Singles(const ORL::Linux::SingleBytePage& inTable, const std::string& inText,
                        std::size_t inBehind) const
    {
        char* const text = mText.Last<char>(inText.size(), inBehind);
        std::memcpy(text, inText.data(), inText.size());
        unsigned short* const units = mResult.Last<unsigned short>(inText.size(), inBehind / 2 * 2);
        const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
        return UTF16String(units, GetParam().mSinglesToUnits(inTable, bytes, inText.size(), units));
    }

    void ExpectUnits(unsigned inPage, const std::string& inText, std::size_t inBehind = 0) const
    {
        ASSERT_EQ(CharactersOf(inPage).Units(inText), Units(inPage, inText, inBehind))
            << "page " << inPage << ", " << inText.size() << " bytes, " << inBehind << " before the end";
        ASSERT_EQ(CharactersOf(inPage).Units(inText).size(),
                  ORL::Linux::CountUnits(TableOf(inPage), reinterpret_cast<const unsigned char*>(inText.data()),
                                         inText.size()));
    }

    void ExpectBytes(unsigned inPage, const UTF16String& inText, std::size_t inBehind = 0) const
    {
        ASSERT_EQ(CharactersOf(inPage).Bytes(inText), Bytes(inPage, inText, inBehind))
            << "page " << inPage << ", " << inText.size() << " units, " << inBehind << " before the end";
        ASSERT_EQ(CharactersOf(inPage).Bytes(inText).size(),
                  ORL::Linux::CountBytes(TableOf(inPage), inText.data(), inText.size()));
    }

private:
    GuardedMemory mText{0x40000};
    GuardedMemory mResult{0x40000};
};

// Returns text in which every kind of byte follows every other: ASCII, zeros, lead bytes and single bytes.
std::string MixedBytes(SteadyNumbers& ioNumbers, std::size_t inCount)
{
    std::string text;
    while (text.size() < inCount) {
        const unsigned kind = ioNumbers.Below(12);
        const unsigned byte = kind < 4    ? 0x20 + ioNumbers.Below(0x5F)
                              : kind == 4 ? 0
                              : kind < 9  ? 0x81 + ioNumbers.Below(0x1F)
                                          : ioNumbers.Below(256);
        text.push_back(static_cast<char>(byte));
    }
    return text;
}

UTF16String MixedUnits(SteadyNumbers& ioNumbers, std::size_t inCount)
{
    UTF16String text;
    while (text.size() < inCount) {
        const unsigned kind = ioNumbers.Below(4);
        text.push_back(static_cast<unsigned short>(kind == 0   ? ioNumbers.Below(0x80)
                                                   : kind == 1 ? 0x4E00 + ioNumbers.Below(0x1000)
                                                               : ioNumbers.Below(0x10000)));
    }
    return text;
}

} // namespace

TEST_P(EachCodePageKernel, EveryByteAndPair_IsReadAsRecorded)
{
    for (const unsigned page : kDoubleBytePages) {
        const PageDigest& digest = *std::find_if(std::begin(kDigests), std::end(kDigests),
                                                 [page](const PageDigest& inOne) { return inOne.mPage == page; });
        EXPECT_EQ(digest.mUnits, DigestOfUnits([&](const std::string& inText) { return Units(page, inText); })) << page;
    }
}

TEST_P(EachCodePageKernel, EveryUnit_IsWrittenAsRecorded)
{
    for (const unsigned page : kDoubleBytePages) {
        const PageDigest& digest = *std::find_if(std::begin(kDigests), std::end(kDigests),
                                                 [page](const PageDigest& inOne) { return inOne.mPage == page; });
        EXPECT_EQ(digest.mBytes, DigestOfBytes([&](const UTF16String& inText) { return Bytes(page, inText); })) << page;
    }
}

TEST_P(EachCodePageKernel, EveryLengthAndAlignment_IsItsCharacters)
{
    SteadyNumbers numbers;
    for (const unsigned page : kDoubleBytePages) {
        for (std::size_t count = 1; count <= 2 * kBlock + 16; ++count) {
            for (std::size_t behind = 0; behind <= kBlock; ++behind) {
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, MixedBytes(numbers, count), behind));
                ASSERT_NO_FATAL_FAILURE(ExpectBytes(page, MixedUnits(numbers, count), behind));
            }
        }
    }
}

TEST_P(EachCodePageKernel, ASCIIOfEveryLength_IsCopied)
{
    for (std::size_t count = 1; count <= 3 * kBlock; ++count) {
        for (std::size_t behind = 0; behind <= kBlock; behind += 3) {
            std::string bytes;
            for (std::size_t i = 0; i < count; ++i) {
                bytes.push_back(static_cast<char>(i % 0x80));
            }
            ASSERT_NO_FATAL_FAILURE(ExpectUnits(932, bytes, behind));
            ASSERT_NO_FATAL_FAILURE(ExpectBytes(932, UTF16String(bytes.begin(), bytes.end()), behind));
        }
    }
}

// Places a pair before, across and after the ends of blocks; also a lead byte alone at the end or before a zero byte,
// and a single byte that could be a trail byte.
TEST_P(EachCodePageKernel, PairAtEveryPlace_IsOneUnit)
{
    const std::string middles[] = {"\x93\xFA", "\x93\\", "\xB1\xB2", "\xFC\x81\xFE", std::string("\x93\0", 2), "\x93"};
    for (const unsigned page : kDoubleBytePages) {
        for (std::size_t before = 0; before <= 2 * kBlock + 2; ++before) {
            for (const std::string& middle : middles) {
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, std::string(before, 'x') + middle));
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, std::string(before, 'x') + middle + "y"));
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, std::string(before, 'x') + middle + std::string(70, 'y')));
            }
            const UTF16String units = UTF16String(before, 'x') + UTF16String(1, 0x65E5);
            ASSERT_NO_FATAL_FAILURE(ExpectBytes(page, units));
            ASSERT_NO_FATAL_FAILURE(ExpectBytes(page, units + UTF16String(33, 'y')));
        }
    }
}

// Every second byte of a run of lead bytes is a trail byte, regardless of the block boundaries within the run.
TEST_P(EachCodePageKernel, RunsOfLeadBytes_ArePairsFromTheirFirstByteOn)
{
    for (const unsigned page : kDoubleBytePages) {
        for (std::size_t before = 0; before <= kBlock; ++before) {
            for (std::size_t run = 1; run <= 2 * kBlock + 3; ++run) {
                const std::string text = std::string(before, 'x') + std::string(run, '\x82');
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, text));
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, text + "\x40\x82\x82\x82z"));
                ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, text + std::string("\0\x82\x40", 3)));
            }
        }
    }
}

TEST_P(EachCodePageKernel, LongMixedText_IsItsCharacters)
{
    SteadyNumbers numbers;
    for (const unsigned page : kDoubleBytePages) {
        for (int i = 0; i < 20; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectUnits(page, MixedBytes(numbers, 60000 + numbers.Below(5000))));
            ASSERT_NO_FATAL_FAILURE(ExpectBytes(page, MixedUnits(numbers, 60000 + numbers.Below(5000))));
        }
    }
}

TEST_P(EachCodePageKernel, PagesOfOneByte_AreReadAsRecordedAtEveryLength)
{
    SteadyNumbers numbers;
    for (const PageDigest& digest : kDigests) {
        const ORL::Linux::SingleBytePage* const table = ORL::Linux::FindCodePage(digest.mPage)->mSingle;
        if (table == nullptr) {
            continue;
        }
        const auto convert = [&](const std::string& inText) { return Singles(*table, inText, 0); };
        EXPECT_EQ(digest.mUnits, DigestOfUnits(convert)) << digest.mPage;
        unsigned short units[256];
        for (unsigned byte = 0; byte < 256; ++byte) {
            units[byte] = Internal::To16BitUnicode(std::string(1, static_cast<char>(byte)), digest.mPage).at(0);
        }
        for (std::size_t count = 1; count <= 2 * kBlock + 16; ++count) {
            for (std::size_t behind = 0; behind <= kBlock; ++behind) {
                const std::string text = MixedBytes(numbers, count);
                UTF16String expected;
                for (const char byte : text) {
                    expected.push_back(units[static_cast<unsigned char>(byte)]);
                }
                ASSERT_EQ(expected, Singles(*table, text, behind)) << digest.mPage << ' ' << count << ' ' << behind;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Both, EachCodePageKernel, testing::ValuesIn(ORL::Linux::kCodePageKernels),
                         [](const testing::TestParamInfo<CodePageKernel>& inInfo) {
                             return std::string(inInfo.param.mName) == "plain" ? "Plain" : "AVX512";
                         });

TEST(CodePageKernels, TheBest_IsTheFirstThatTheProcessorSupports)
{
    const CodePageKernel* first = ORL::Linux::kCodePageKernels;
    while (!first->mIsSupported()) {
        ++first;
    }
    EXPECT_EQ(first, &ORL::Linux::BestCodePageKernel());
    EXPECT_TRUE(std::rbegin(ORL::Linux::kCodePageKernels)->mIsSupported());
}

// Tests lengths on both sides of the limit up to which a result is converted on the stack.
TEST(CodePageKernels, MixedResultsAroundTheStackBuffer_AreTheirCharacters)
{
    SteadyNumbers numbers;
    for (const unsigned page : kDoubleBytePages) {
        for (const std::size_t limit : {512u, 1024u, 2048u, 4096u}) {
            for (std::size_t count = limit - 3; count <= limit + 3; ++count) {
                const std::string bytes = MixedBytes(numbers, count);
                ASSERT_EQ(CharactersOf(page).Units(bytes), Internal::To16BitUnicode(bytes, page)) << count;
                const UTF16String units = MixedUnits(numbers, count);
                ASSERT_EQ(CharactersOf(page).Bytes(units), Internal::ToMultiByteWithCodePage(units, page)) << count;
            }
        }
    }
}
