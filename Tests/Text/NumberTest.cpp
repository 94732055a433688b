#include <tvxcore/Number.h>

#include <CorePlatform/NumberFormat.h>
#include <DecimalComma.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using namespace tvxcore;
using namespace tvxcore::utility;
using ORLTest::Show;

namespace {

std::string In(const char* inLocale, const char* inDecimal, unsigned inFractionDigits, bool inIsGrouped = true,
               bool inHasLeadingZero = true)
{
    const Platform::NumberStyle style = {inHasLeadingZero, inIsGrouped, inFractionDigits};
    return Show(Platform::FormatNumber_Impl(inDecimal, style, inLocale));
}

std::string Ungrouped(double inNumber, std::size_t inFractionDigits, long inPrecision = 31)
{
    const Flags<unsigned short> flags(kNumberFlag_NoGrouping);
    std::string text = Show(NumberToString(inNumber, 1, inFractionDigits, flags, inPrecision));
    // Replaces the user's decimal point.
    const std::size_t point = text.find_first_not_of("-0123456789");
    return point == std::string::npos ? text : text.replace(point, text.size() - point - inFractionDigits, ".");
}

} // namespace

TEST(FormatNumber, EachLocale_GroupsAndPointsInItsOwnWay)
{
    struct Row
    {
        int mLine;
        const char* mLocale;
        const char* mDecimal;
        unsigned mFractionDigits;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, "en-US", "0.0", 1, "0.0"},
        {__LINE__, "en-US", "1234567.89", 2, "1,234,567.89"},
        {__LINE__, "en-US", "-1023.0", 1, "-1,023.0"},
        {__LINE__, "en-US", "999", 0, "999"},
        {__LINE__, "de-DE", "1234567.89", 2, "1.234.567,89"},
        {__LINE__, "de-DE", "-1.0", 1, "-1,0"},
        {__LINE__, "de-CH", "1234567.5", 1, "1<2019>234<2019>567.5"},
        {__LINE__, "ja-JP", "1234567.5", 1, "1,234,567.5"},
        {__LINE__, "hi-IN", "1234567.5", 1, "12,34,567.5"},
        {__LINE__, "xx-YY", "1234567.5", 1, "1234567.5"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, In(row.mLocale, row.mDecimal, row.mFractionDigits)) << "row at line " << row.mLine;
    }
}

TEST(FormatNumber, GroupingAndLeadingZero_CanBeLeftOut)
{
    EXPECT_EQ("1234567,5", In("de-DE", "1234567.5", 1, false));
    EXPECT_EQ("0,5", In("de-DE", "0.5", 1, true, true));
    EXPECT_EQ(",5", In("de-DE", "0.5", 1, true, false));
    EXPECT_EQ("-,5", In("de-DE", "-0.5", 1, true, false));
    EXPECT_EQ("12,5", In("de-DE", "12.5", 1, true, false));
}

TEST(FormatNumber, TheLargestNumber_FitsGrouped)
{
    const std::string digits(309, '9');
    const std::string text = In("en-US", (digits + ".000000000").c_str(), 9);
    EXPECT_EQ(309u + 102u + 10u, text.size());
    EXPECT_EQ("999,999", text.substr(0, 7));
}

TEST(NumberToString, ExactlyTheWantedFractionDigits_AreShown)
{
    struct Row
    {
        int mLine;
        double mNumber;
        std::size_t mFractionDigits;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, 1.0, 1, "1.0"},
        {__LINE__, 1.0, 2, "1.00"},
        {__LINE__, 0.0, 1, "0.0"},
        {__LINE__, 1023.96, 1, "1024.0"},
        {__LINE__, 99.999, 2, "100.00"},
        {__LINE__, 2.5, 0, "2"},
        {__LINE__, 3.5, 0, "4"},
        // ties that a double represents exactly round to even
        {__LINE__, 1.25, 1, "1.2"},
        {__LINE__, 1.35, 1, "1.4"},
        {__LINE__, -1.25, 1, "-1.2"},
        {__LINE__, 0.000000001, 9, "0.000000001"},
        // results that round to zero have no sign
        {__LINE__, -0.04, 1, "0.0"},
        {__LINE__, -0.0, 2, "0.00"},
        {__LINE__, -0.06, 1, "-0.1"},
        {__LINE__, 16777216.0, 1, "16777216.0"},
        {__LINE__, 18446744073709551616.0, 2, "18446744073709551616.00"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, Ungrouped(row.mNumber, row.mFractionDigits)) << "row at line " << row.mLine;
    }
}

TEST(NumberToString, MoreThanNineFractionDigits_CountAsNine)
{
    const Flags<unsigned short> none;
    EXPECT_EQ(NumberToString(0.3, 1, 9, none, 31), NumberToString(0.3, 1, static_cast<std::size_t>(-1), none, 31));
}

TEST(NumberToString, DigitsBehindThePrecision_BecomeZero)
{
    EXPECT_EQ("123.50", Ungrouped(123.456, 2, 4));
    EXPECT_EQ("120.00", Ungrouped(123.456, 2, 2));
    EXPECT_EQ("1000.0", Ungrouped(999.96, 1, 3));
    EXPECT_EQ("1000", Ungrouped(999.96, 0, 1));
    EXPECT_EQ("0.0012", Ungrouped(0.0012349, 4, 2));
    EXPECT_EQ("0.00120", Ungrouped(0.0012349, 5, 2));
    EXPECT_EQ("100.0", Ungrouped(123.4, 1, 0)) << "at least one digit counts";
    EXPECT_EQ("1" + std::string(300, '0') + ".0", Ungrouped(1e300, 1, 15));
    EXPECT_EQ(309u + 2u, Ungrouped((std::numeric_limits<double>::max)(), 1).size());
}

TEST(NumberToString, HostWithADecimalCommaInTheCLibrary_ChangesNothing)
{
    const auto texts = [] {
        const Flags<unsigned short> none;
        std::vector<UTF16String> shown;
        for (const double number : {0.0, 1.0, -1234567.25, 123.456, 0.0012349, 1e300}) {
            shown.push_back(NumberToString(number, 1, 1, none, 31));
            shown.push_back(NumberToString(number, 1, 5, none, 2)); // rounded twice
        }
        return shown;
    };
    const std::vector<UTF16String> expected = texts();
    const ORLTest::DecimalComma comma;
    ASSERT_TRUE(comma.IsInForce());
    EXPECT_EQ(expected, texts());
}

TEST(NumberToString, NoNumberAndTheInfinities_HaveTheirOwnText)
{
    const Flags<unsigned short> none;
    EXPECT_EQ("NaN", Show(NumberToString(std::nan(""), 1, 1, none, 31)));
    EXPECT_EQ("<221e>", Show(NumberToString(HUGE_VAL, 1, 1, none, 31)));
    EXPECT_EQ("-<221e>", Show(NumberToString(-HUGE_VAL, 1, 1, none, 31)));
}

TEST(NumberToString, InTheUsersLocale_IsWhatTheSystemSays)
{
    const Platform::NumberStyle style = {true, true, 1};
    const UTF16String expected = Platform::FormatNumber_Impl("1234567.5", style, nullptr);
    EXPECT_EQ(expected, NumberToString(1234567.5, 1, 1, Flags<unsigned short>(), 31));
    EXPECT_GE(expected.size(), 9u);
}

TEST(Flags, AnEmptySet_HasNone)
{
    EXPECT_FALSE(Flags<unsigned short>().Has(0xFFFF));
    EXPECT_TRUE(Flags<unsigned short>(6).Has(2));
    EXPECT_FALSE(Flags<unsigned short>(6).Has(1));
    EXPECT_EQ(6, Flags<unsigned short>(6).GetBits());
}
