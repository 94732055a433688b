#include <tvxcore/Text.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

using namespace tvxcore::utility;
using ORLTest::Bytes;
using ORLTest::Units;

namespace {

constexpr std::size_t kLongestShort = 40;

// Calls inCompare for each string of up to 40 letters in which one letter is replaced by one of the units.
template <class Text, class Compare>
void ForEachShortText(const std::vector<unsigned>& inUnits, const Compare& inCompare)
{
    for (std::size_t size = 1; size <= kLongestShort; ++size) {
        for (std::size_t place = 0; place < size; ++place) {
            for (const unsigned unit : inUnits) {
                Text text(size, 'a');
                text[place] = static_cast<typename Text::value_type>(unit);
                inCompare(text);
            }
        }
    }
}

} // namespace

// Conversions that return a short string by value take a separate path; conversions into the caller's memory are the
// reference.
TEST(Utf8To16, ShortTextsWithAnyByteAtAnyPlace_AreWhatTheyAreInMemoryOfTheCaller)
{
    std::vector<unsigned> bytes(256);
    std::iota(bytes.begin(), bytes.end(), 0u);
    ForEachShortText<UTF8String>(bytes, [](const UTF8String& inText) {
        unsigned short units[kLongestShort];
        const std::size_t count = UTF8to16(inText.data(), inText.size(), units);
        ASSERT_EQ(UTF16String(units, count), UTF8to16(inText));
    });
}

TEST(Utf16To8, ShortTextsWithAnyUnitAtAnyPlace_AreWhatTheyAreInMemoryOfTheCaller)
{
    const std::vector<unsigned> units = {0,     1,      0x7F,   0x80,   0xFF,   0x100,  0x17F, 0x7FF,
                                         0x800, 0x7F80, 0x8000, 0x807F, 0xD800, 0xDC00, 0xFFFF};
    ForEachShortText<UTF16String>(units, [](const UTF16String& inText) {
        unsigned char bytes[3 * kLongestShort];
        const std::size_t count = UTF16to8(inText.data(), inText.size(), bytes);
        ASSERT_EQ(UTF8String(bytes, count), UTF16to8(inText));
    });
}

TEST(Utf8To16, IllFormedText_GivesOneReplacementForEachMaximalSubpart)
{
    struct Row
    {
        int mLine;
        std::string mBytes;
        std::u16string mUnits;
    };
    const Row rows[] = {
        // well formed, at the limits of each length
        {__LINE__, "", u""},
        {__LINE__, std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
        {__LINE__, "\x7F\xC2\x80\xDF\xBF", u"\u007F\u0080\u07FF"},
        {__LINE__, "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
        {__LINE__, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
        // bytes that cannot start a sequence
        {__LINE__, "\x80\xBF", u"\uFFFD\uFFFD"},
        {__LINE__, "\xC0\xAF", u"\uFFFD\uFFFD"},
        {__LINE__, "\xC1\xBFz", u"\uFFFD\uFFFDz"},
        {__LINE__, "\xF5\x80\x80\x80\xFF", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        // overlong forms, surrogates and values above the last code point
        {__LINE__, "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xF0\x80\x80\xAF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xED\xBF\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        // truncated: the longest valid prefix becomes one U+FFFD
        {__LINE__, "\xC2", u"\uFFFD"},
        {__LINE__, "\xE2\x82", u"\uFFFD"},
        {__LINE__, "\xF0\x9F\x98", u"\uFFFD"},
        {__LINE__,
         "\xF1\x80\x80\xE1\x80\xC2"
         "b",
         u"\uFFFD\uFFFD\uFFFDb"},
        {__LINE__,
         "a\xF1\x80\x80\xE1\x80\xC2"
         "b\x80"
         "c\x80\xBF"
         "d",
         u"a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"},
        {__LINE__, "\xE2\x82\xE2\x82\xAC", u"\uFFFD\u20AC"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mUnits), UTF8to16(Bytes(row.mBytes))) << "row at line " << row.mLine;
    }
}

TEST(Utf16To8, UnpairedSurrogate_BecomesTheReplacementCharacter)
{
    struct Row
    {
        int mLine;
        UTF16String mUnits;
        std::string mBytes;
    };
    const Row rows[] = {
        {__LINE__, {}, ""},
        {__LINE__, {'a', 0, 'b'}, std::string("a\0b", 3)},
        {__LINE__, {0x7F, 0x80, 0x7FF, 0x800, 0xFFFF}, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {__LINE__, {0xD800, 0xDC00, 0xDBFF, 0xDFFF}, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {__LINE__, {0xD800}, "\xEF\xBF\xBD"},
        {__LINE__,
         {0xDC00, 'a'},
         "\xEF\xBF\xBD"
         "a"},
        {__LINE__,
         {0xD800, 'a'},
         "\xEF\xBF\xBD"
         "a"},
        {__LINE__, {0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {__LINE__, {0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Bytes(row.mBytes), UTF16to8(row.mUnits)) << "row at line " << row.mLine;
    }
}

TEST(Utf16To8, TerminatedText_EndsAtTheZeroUnit)
{
    const unsigned short text[] = {'a', 0xE4, 0, 'b', 0};
    EXPECT_EQ(Bytes("a\xC3\xA4"), UTF16to8(text));
}

TEST(Utf16To8, PairsAtEveryPlaceOfALongText_AreNeverCutInTwo)
{
    for (std::size_t lead = 0; lead < 4; ++lead) {
        UTF16String units(lead, 'x');
        std::string bytes(lead, 'x');
        for (int i = 0; i < 5000; ++i) {
            units += {0xD83D, 0xDE00};
            bytes += "\xF0\x9F\x98\x80";
        }
        EXPECT_EQ(Bytes(bytes), UTF16to8(units));
        EXPECT_EQ(units, UTF8to16(Bytes(bytes)));
    }
}

TEST(AsciiToUTF16, WidensEachCharacter)
{
    EXPECT_EQ(Units(u""), AsciiToUTF16(""));
    EXPECT_EQ(Units(u"plain ~ text"), AsciiToUTF16("plain ~ text"));
}

TEST(ReplaceAllStringInString, ReplacesFromLeftToRight_AndNeverSearchesWhatItPutIn)
{
    struct Row
    {
        int mLine;
        std::u16string mText, mFind, mReplace, mResult;
    };
    const Row rows[] = {
        {__LINE__, u"", u"a", u"b", u""},
        {__LINE__, u"abc", u"", u"x", u"abc"},
        {__LINE__, u"abc", u"x", u"y", u"abc"},
        {__LINE__, u"aaa", u"aa", u"b", u"ba"},
        {__LINE__, u"a//b///c", u"//", u"/", u"a/b//c"},
        {__LINE__, u"aXbX", u"X", u"XX", u"aXXbXX"},
        {__LINE__, u"one two", u"one two", u"", u""},
        {__LINE__, u"a/b/", u"/", u"\\", u"a\\b\\"},
    };
    for (const Row& row : rows) {
        UTF16String text = Units(row.mText);
        ReplaceAllStringInString(text, Units(row.mFind), Units(row.mReplace));
        EXPECT_EQ(Units(row.mResult), text) << "row at line " << row.mLine;
    }
}

TEST(ReplaceAllStringInString, TextGivenAsItsOwnPattern_IsReplacedWhole)
{
    UTF16String text = Units(u"abc");
    ReplaceAllStringInString(text, text, Units(u"x"));
    EXPECT_EQ(Units(u"x"), text);
}

TEST(FoldCase, FoldsFully)
{
    struct Row
    {
        int mLine;
        std::u16string mText, mFolded;
    };
    const Row rows[] = {
        {__LINE__, u"", u""},
        {__LINE__, u".WAV @[`{", u".wav @[`{"},
        {__LINE__, u"Stra\u00DFe \u1E9E", u"strasse ss"},
        {__LINE__, u"\u0130I\u0131", u"i\u0307i\u0131"},
        {__LINE__, u"\u03A3\u03C3\u03C2", u"\u03C3\u03C3\u03C3"},
        {__LINE__, u"\uFB03", u"ffi"},
        {__LINE__, u"\U00010400\U0001E921", u"\U00010428\U0001E943"},
        {__LINE__, u"\u13A0\uAB70", u"\u13A0\u13A0"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mFolded), FoldCase(Units(row.mText))) << "row at line " << row.mLine;
    }
}

TEST(FoldCase, UnpairedSurrogates_StayAsTheyAre)
{
    const UTF16String text = {0xDC00, 'A', 0xD801, 'B', 0xD801};
    const UTF16String folded = {0xDC00, 'a', 0xD801, 'b', 0xD801};
    EXPECT_EQ(folded, FoldCase(text));
}

TEST(FoldCase, LongText_IsFoldedAsItsCharactersAre)
{
    for (std::size_t lead = 0; lead < 3; ++lead) {
        UTF16String text(lead, 'X');
        UTF16String folded(lead, 'x');
        for (int i = 0; i < 2000; ++i) {
            text += Units(u"A\u00DF\U00010400Bc");
            folded += Units(u"ass\U00010428bc");
        }
        EXPECT_EQ(folded, FoldCase(text));
    }
}

TEST(FoldCase, ZeroUnits_StayInTheirPlace)
{
    EXPECT_EQ(UTF16String({0, 'a', 0}), FoldCase(UTF16String({0, 'A', 0})));
}
