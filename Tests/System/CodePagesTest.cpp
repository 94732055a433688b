// Tests conversions between code pages and UTF-16: both platforms must return the results of Windows.
#include "CodePageSweep.h"

#include <CRV/Application.h>
#include <CheckRecorder.h>
#include <ORLHostSettings.h>
#include <ORLString.h>
#include <ORLStringUtils.h>
#include <Platform/CodePages.h>
#include <System/CodePageConversion.h>
#include <System/LanguageInternals.h>
#include <TextHelpers.h>

#include <climits>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr unsigned short kJapanese = 1041;
constexpr unsigned short kKorean = 1042;
constexpr unsigned short kGerman = 1031;

class CodePages : public testing::Test
{
protected:
    void SetUp() override { SetLanguageID(kGerman); }

    void TearDown() override
    {
        Internal::ForgetLanguage();
        CRV::SetApplicationType(CRV::kApplicationType_Default);
    }
};

std::string Decoded(unsigned inPage, const std::string& inBytes)
{
    return Show(Internal::To16BitUnicode(inBytes, inPage));
}

std::string Encoded(unsigned inPage, const std::u16string& inUnits)
{
    return Internal::ToMultiByteWithCodePage(Units(inUnits), inPage);
}

} // namespace

TEST_F(CodePages, EveryPage_ReadsEveryByteAndPairAsRecorded)
{
    for (const PageDigest& page : kDigests) {
        EXPECT_EQ(page.mUnits, DigestOfUnits([&page](const std::string& inBytes) {
                      return Internal::To16BitUnicode(inBytes, page.mPage);
                  }))
            << page.mPage;
    }
}

TEST_F(CodePages, EveryPage_WritesEveryUnitAsRecorded)
{
    for (const PageDigest& page : kDigests) {
        EXPECT_EQ(page.mBytes, DigestOfBytes([&page](const UTF16String& inUnits) {
                      return Internal::ToMultiByteWithCodePage(inUnits, page.mPage);
                  }))
            << page.mPage;
    }
}

TEST_F(CodePages, WellKnownBytes_AreTheirCharacters)
{
    EXPECT_EQ("<65e5><672c>", Decoded(932, "\x93\xFA\x96\x7B"));
    EXPECT_EQ("<ff71>\\", Decoded(932, "\xB1\x5C"));
    EXPECT_EQ("<d55c><ae00>", Decoded(949, "\xC7\xD1\xB1\xDB"));
    EXPECT_EQ("<4e2d><20ac>", Decoded(936, "\xD6\xD0\x80"));
    EXPECT_EQ("<53f0>", Decoded(950, "\xA5\x78"));
    EXPECT_EQ("<20ac>a<0081>", Decoded(1252, "\x80"
                                             "a\x81"));
    EXPECT_EQ("<0416><2116>", Decoded(1251, "\xC6\xB9"));
    EXPECT_EQ("<2554>", Decoded(437, "\xC9"));
    EXPECT_EQ("\x93\xFA\x96\x7B", Encoded(932, u"\u65e5\u672c"));
    EXPECT_EQ("\xC7\xD1\xB1\xDB", Encoded(949, u"\ud55c\uae00"));
    EXPECT_EQ("\x80", Encoded(1252, u"\u20ac"));
}

TEST_F(CodePages, CharactersThatThePageLacks_AreTheirBestFitOrAQuestionMark)
{
    EXPECT_EQ("\\\x83\xCA?", Encoded(932, u"\u00A5\u00B5\u203E"));
    EXPECT_EQ("c", Encoded(932, u"\u00E7"));
    EXPECT_EQ("Aa", Encoded(1252, u"\u0100\uFF41"));
    EXPECT_EQ("a?", Encoded(1252, u"a\u3042"));
    EXPECT_EQ("?", Encoded(932, u"\u200B"));
}

TEST_F(CodePages, Surrogates_AreOneQuestionMarkEach)
{
    for (const unsigned page : kCodePages) {
        EXPECT_EQ("??", Encoded(page, u"\U0001F600")) << page;
        EXPECT_EQ("a?b", Encoded(page, std::u16string{u'a', char16_t(0xD83D), u'b'})) << page;
        EXPECT_EQ("a?b", Encoded(page, std::u16string{u'a', char16_t(0xDE00), u'b'})) << page;
    }
}

TEST_F(CodePages, PairsWithoutAMeaning_AreTheDefaultCharacterAndTakeBothBytes)
{
    EXPECT_EQ("a<30fb>b", Decoded(932, "a\x85\x40"
                                       "b"));
    EXPECT_EQ("a<30fb>b", Decoded(932, "a\x81\x20"
                                       "b"));
    EXPECT_EQ("a?b", Decoded(949, "a\xC9\x40"
                                  "b"));
    EXPECT_EQ("a?b", Decoded(936, "a\x81\x7F"
                                  "b"));
}

TEST_F(CodePages, LeadByteAtTheEndOrBeforeAZeroByte_StandsAlone)
{
    EXPECT_EQ("a<30fb>", Decoded(932, "a\x81"));
    EXPECT_EQ("<770b>?<0000>x", Decoded(936, std::string("\xBF\xB4\xC7\0x", 5)));
    EXPECT_EQ("<770b>?", Decoded(936, "\xBF\xB4\xC7"));
    EXPECT_EQ("?", Decoded(949, "\xFE"));
}

TEST_F(CodePages, ZeroBytesAndUnits_AreConvertedLikeAllOthers)
{
    for (const unsigned page : kCodePages) {
        EXPECT_EQ("a<0000>b", Decoded(page, std::string("a\0b", 3))) << page;
        EXPECT_EQ(std::string("a\0b", 3), Encoded(page, std::u16string(u"a\0b", 3))) << page;
    }
}

TEST_F(CodePages, EmptyText_StaysEmptyWithoutACheck)
{
    CheckRecorder recorder;
    EXPECT_TRUE(StringUtils::ToUnicode(std::string()).empty());
    EXPECT_TRUE(StringUtils::ToMultiByte(UTF16String()).empty());
    EXPECT_TRUE(StringUtils::CodePageMultiByteToUnicode16(std::string()).empty());
    EXPECT_TRUE(StringUtils::Unicode16ToCodePageMultiByte(UTF16String()).empty());
    EXPECT_TRUE(Internal::To16BitUnicode(std::string(), 12345).empty());
    EXPECT_TRUE(recorder.Reports().empty());
}

// Covers the loops over blocks of 16 bytes, with runs of ASCII and lone lead bytes at every position.
TEST_F(CodePages, EveryLengthAndPlace_IsThePartsSideBySide)
{
    for (std::size_t before = 0; before < 40; ++before) {
        for (std::size_t behind = 0; behind < 40; ++behind) {
            const std::string bytes =
                std::string(before, 'x') + "\x93\xFA" + std::string(behind, 'y') + (behind % 2 == 0 ? "\x81" : "");
            const UTF16String expected = UTF16String(before, 'x') + Units(u"\u65e5") + UTF16String(behind, 'y')
                                         + (behind % 2 == 0 ? Units(u"\u30fb") : UTF16String());
            ASSERT_EQ(expected, Internal::To16BitUnicode(bytes, 932)) << before << ' ' << behind;
            const UTF16String units = UTF16String(before, 'x') + Units(u"\u65e5") + UTF16String(behind, 'y');
            ASSERT_EQ(std::string(before, 'x') + "\x93\xFA" + std::string(behind, 'y'),
                      Internal::ToMultiByteWithCodePage(units, 932));
        }
    }
}

TEST_F(CodePages, ResultsAroundTheStackBuffer_AreWhole)
{
    for (const std::size_t count :
         {255u, 256u, 257u, 511u, 512u, 513u, 1023u, 1024u, 1025u, 2047u, 2048u, 2049u, 4096u, 4097u, 40000u}) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += "\x93\xFA";
        }
        EXPECT_EQ(UTF16String(count, 0x65E5), Internal::To16BitUnicode(bytes, 932)) << count;
        EXPECT_EQ(bytes, Internal::ToMultiByteWithCodePage(UTF16String(count, 0x65E5), 932)) << count;
        EXPECT_EQ(UTF16String(count, 'a'), Internal::To16BitUnicode(std::string(count, 'a'), 1252)) << count;
        EXPECT_EQ(std::string(count, 'a'), Internal::ToMultiByteWithCodePage(UTF16String(count, 'a'), 1252)) << count;
    }
}

TEST_F(CodePages, Languages_ChooseTheirPage)
{
    SetLanguageID(kJapanese);
    EXPECT_EQ("<65e5>", Show(StringUtils::ToUnicode("\x93\xFA")));
    EXPECT_EQ("\x93\xFA", StringUtils::ToMultiByte(Units(u"\u65e5")));
    SetLanguageID(kKorean);
    EXPECT_EQ("<d55c>", Show(StringUtils::ToUnicode("\xC7\xD1")));
    EXPECT_EQ("\xC7\xD1", StringUtils::ToMultiByte(Units(u"\ud55c")));
}

TEST_F(CodePages, LanguageWithoutAPage_UsesTheSystemsDefaultPage)
{
    const unsigned page = StringUtils::GetDefaultCodePage();
    const std::u16string text = u"a\u00E9\u0416\u65e5";
    EXPECT_EQ(Encoded(page, text), StringUtils::ToMultiByte(Units(text)));
    EXPECT_EQ(Encoded(0, text), StringUtils::ToMultiByte(Units(text)));
    EXPECT_EQ(Decoded(page, "a\xE9\xC6"), Show(StringUtils::ToUnicode("a\xE9\xC6")));
}

TEST_F(CodePages, HostOfTheSystemsPage_UsesItWhateverTheLanguage)
{
    SetLanguageID(kJapanese);
    EXPECT_EQ("<65e5>", Show(StringUtils::CodePageMultiByteToUnicode16("\x93\xFA")));
    EXPECT_EQ("\x93\xFA", StringUtils::Unicode16ToCodePageMultiByte(Units(u"\u65e5")));
    CRV::SetApplicationType(CRV::kApplicationType_SystemCodePage);
    EXPECT_EQ(Decoded(0, "\x93\xFA"), Show(StringUtils::CodePageMultiByteToUnicode16("\x93\xFA")));
    EXPECT_EQ(Encoded(0, u"\u65e5"), StringUtils::Unicode16ToCodePageMultiByte(Units(u"\u65e5")));
    EXPECT_EQ("<65e5>", Show(StringUtils::ToUnicode("\x93\xFA"))); // ToUnicode and ToMultiByte use the language
    EXPECT_EQ("\x93\xFA", StringUtils::ToMultiByte(Units(u"\u65e5")));
}

TEST_F(CodePages, InvalidBytes_ReachTheSystemUnchanged)
{
    SetLanguageID(kJapanese);
    EXPECT_EQ("<30fb>", Show(StringUtils::ToUnicode("\x81")));
    EXPECT_EQ("<0080><f8f0><f8f1><f8f2><f8f3>", Show(StringUtils::ToUnicode("\x80\xA0\xFD\xFE\xFF")));
}

TEST_F(CodePages, BytesWithoutAMeaning_ArePrivateCharacters)
{
    EXPECT_EQ("<f8f5>", Decoded(936, "\xFF"));
    EXPECT_EQ("<f8f7>", Decoded(949, "\xFF"));
    EXPECT_EQ("<f8f8>", Decoded(950, "\xFF"));
    EXPECT_EQ("<f8c1>", Decoded(874, "\xDB"));
}

TEST_F(CodePages, CodePagesAndUTF8_ReadTheSameBytesDifferently)
{
    SetLanguageID(kJapanese);
    const std::string bytes = "\xE6\x97\xA5";
    EXPECT_EQ("<65e5>", Show(MakeString(bytes)));
    EXPECT_NE(MakeString(bytes), StringUtils::ToUnicode(bytes));
}

TEST_F(CodePages, IdentityForms_ReturnACopy)
{
    EXPECT_EQ(Units(u"\xD800\u65e5"), StringUtils::ToUnicode(Units(u"\xD800\u65e5")));
    EXPECT_EQ(std::string("\xFF\0x", 3), StringUtils::ToMultiByte(std::string("\xFF\0x", 3)));
}

TEST_F(CodePages, TextThatCannotBeConverted_IsEmptyAfterTheCheck)
{
    CheckRecorder recorder;
    EXPECT_TRUE(Internal::To16BitUnicode("a", 12345).empty());
    EXPECT_TRUE(Internal::To16BitUnicode(std::string(2000, 'a'), 12345).empty());
    EXPECT_TRUE(Internal::ToMultiByteWithCodePage(Units(u"a"), 12345).empty());
    EXPECT_TRUE(Internal::ToMultiByteWithCodePage(UTF16String(2000, 'a'), 12345).empty());
    EXPECT_EQ(4u, recorder.Reports(CheckReport::kAssert).size());
}

// A page that the system lacks has limits of 0. The limits of every other page are large enough for all of its
// characters.
TEST_F(CodePages, LimitsOfAResult_HoldForEveryPage)
{
    EXPECT_EQ(0u, StringUtils::Platform::MaxUnits_Impl(12345, 7));
    EXPECT_EQ(0u, StringUtils::Platform::MaxBytes_Impl(12345, 7));
    for (const unsigned page : kCodePages) {
        const UTF16String units = Internal::To16BitUnicode("\x93\xFA\xC7\xD1\xE9", page);
        EXPECT_LE(units.size(), StringUtils::Platform::MaxUnits_Impl(page, 5)) << page;
        EXPECT_LE(Internal::ToMultiByteWithCodePage(units, page).size(),
                  StringUtils::Platform::MaxBytes_Impl(page, units.size()))
            << page;
    }
    EXPECT_EQ(14u, StringUtils::Platform::MaxBytes_Impl(932, 7));
}

// Mixed text, at every density of non-ASCII characters, must convert to the same bytes as unit-by-unit conversion.
TEST_F(CodePages, MixedText_IsItsUnitsOneByOne)
{
    std::mt19937 random(3);
    const char16_t others[] = {0xE9, 0x20AC, 0x416, 0x65E5, 0xFF71, 0xFFFD, 0x3042, 0xD83D};
    for (const unsigned page : kCodePages) {
        for (unsigned density = 0; density <= 16; ++density) {
            UTF16String units;
            std::string bytes;
            UTF16String again;
            for (int i = 0; i < 3000; ++i) {
                const bool isOther = random() % 16 < density;
                const auto unit =
                    static_cast<unsigned short>(isOther ? others[random() % std::size(others)] : 'a' + random() % 26);
                units.push_back(unit);
                bytes += Internal::ToMultiByteWithCodePage(UTF16String(1, unit), page);
                again += Internal::To16BitUnicode(Internal::ToMultiByteWithCodePage(UTF16String(1, unit), page), page);
            }
            ASSERT_EQ(bytes, Internal::ToMultiByteWithCodePage(units, page)) << page << ' ' << density;
            ASSERT_EQ(again, Internal::To16BitUnicode(bytes, page)) << page << ' ' << density;
        }
    }
}

// Sizes in Windows are 32-bit, so the functions fail for longer strings without reading them.
TEST_F(CodePages, TextBeyondTheSystemsSizes_CannotBeMeasuredOrConverted)
{
    const std::size_t count = static_cast<std::size_t>(INT_MAX) + 1;
    const unsigned short unit = 'a';
    EXPECT_EQ(0u, StringUtils::Platform::MaxUnits_Impl(932, count));
    EXPECT_EQ(0u, StringUtils::Platform::MaxUnits_Impl(1252, count));
    EXPECT_EQ(0u, StringUtils::Platform::MaxBytes_Impl(932, count));
    EXPECT_EQ(0u, StringUtils::Platform::MaxBytes_Impl(1252, count));
    EXPECT_EQ(0u, StringUtils::Platform::MeasureUnits_Impl(932, "a", count));
    EXPECT_EQ(0u, StringUtils::Platform::MeasureUnits_Impl(1252, "a", 2 * count + 1));
    EXPECT_EQ(0u, StringUtils::Platform::MeasureBytes_Impl(932, &unit, count));
    EXPECT_EQ(0u, StringUtils::Platform::MeasureBytes_Impl(1252, &unit, count));
    unsigned short units[1];
    char bytes[1];
    EXPECT_EQ(0u, StringUtils::Platform::ToUnits_Impl(932, "a", count, units, 1));
    EXPECT_EQ(0u, StringUtils::Platform::ToUnits_Impl(1252, "a", 2 * count + 1, units, 1));
    EXPECT_EQ(0u, StringUtils::Platform::ToBytes_Impl(932, &unit, count, bytes, 1));
    EXPECT_EQ(0u, StringUtils::Platform::ToBytes_Impl(1252, &unit, 2 * count + 1, bytes, 1));
}

TEST_F(CodePages, EightThreads_GetTheSameAnswers)
{
    std::vector<std::thread> threads;
    std::vector<std::uint64_t> digests(8);
    for (std::uint64_t& digest : digests) {
        threads.emplace_back([&digest] {
            digest = DigestOfBytes(
                [](const UTF16String& inUnits) { return Internal::ToMultiByteWithCodePage(inUnits, 932); });
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<std::uint64_t>(8, 0x21DF44FA6AB3E8DBu), digests);
}

TEST(TrimTrailingZeros, RemovesZerosDownToTwoUnits)
{
    struct Row
    {
        int mLine;
        const char16_t* mText;
        const char* mExpected;
    };
    const Row rows[] = {
        {__LINE__, u"1.500", "1.5"}, {__LINE__, u"100", "10"}, {__LINE__, u"1000", "10"},  {__LINE__, u"2.000", "2."},
        {__LINE__, u"00", "00"},     {__LINE__, u"0", "0"},    {__LINE__, u"", ""},        {__LINE__, u"000", "00"},
        {__LINE__, u"1.5", "1.5"},   {__LINE__, u"10", "10"},  {__LINE__, u"0010", "001"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mExpected, Show(StringUtils::TrimTrailingZeros(Units(row.mText)))) << "row at line " << row.mLine;
    }
}
