#include <ORLLocale.h>

#include <ORLString.h>
#include <Strings/LocaleInternals.h>
#include <tvxcore/NumberPunctuation.h>

#include <gtest/gtest.h>
#include <locale>
#include <sstream>
#include <string>

using namespace ORL;

namespace {

// Number punctuation with the given decimal point, and the given separator between groups of three digits.
class Written : public std::numpunct<wchar_t>
{
public:
    Written(wchar_t inPoint, wchar_t inSeparator) : mPoint(inPoint), mSeparator(inSeparator) {}

protected:
    wchar_t do_decimal_point() const override { return mPoint; }
    wchar_t do_thousands_sep() const override { return mSeparator; }
    std::string do_grouping() const override { return "\3"; }

private:
    wchar_t mPoint;
    wchar_t mSeparator;
};

std::locale CommaLocale()
{
    return std::locale(std::locale::classic(), new Written(L',', L'.'));
}

std::locale PointLocale()
{
    return std::locale(std::locale::classic(), new Written(L'.', L','));
}

struct Row
{
    int mLine;
    const char* mText;
    double mValue;
};

template <std::size_t N>
void ExpectEach(const Row (&inRows)[N], const std::locale& inLocale)
{
    for (const Row& row : inRows) {
        EXPECT_EQ(row.mValue, Locale::GetValueFromDisplayString(MakeString(row.mText), inLocale))
            << "row at line " << row.mLine << ": " << row.mText;
    }
}

} // namespace

TEST(GetValueFromDisplayString, LocaleWithADecimalComma_ReadsBothConventions)
{
    const Row rows[] = {
        {__LINE__, "1,5", 1.5},
        {__LINE__, "1.5", 1.5},
        {__LINE__, "-1,5", -1.5},
        {__LINE__, "-1.5", -1.5},
        {__LINE__, " 1,5", 1.5},
        {__LINE__, "1.234,5", 1234.5},
        {__LINE__, "1.234.567", 1234567},
        // parsing stops at a separator that does not end a group
        {__LINE__, "1.23", 1.23},
        {__LINE__, "1.234.5", 1234},
        {__LINE__, "1.2345", 1.2345},
        {__LINE__, "12.5 kg", 12.5},
        // if the localised or the classic reading is 0, the classic one is used: a known limitation
        {__LINE__, ",5", 0},
        {__LINE__, "-,5", 0},
        {__LINE__, "0,5", 0},
        {__LINE__, "abc", 0},
        {__LINE__, "", 0},
        {__LINE__, "0", 0},
        {__LINE__, "-0", 0},
    };
    ExpectEach(rows, CommaLocale());
}

TEST(GetValueFromDisplayString, LocaleWithADecimalPoint_ReadsThousandsNatively)
{
    const Row rows[] = {
        {__LINE__, "1,000", 1000}, {__LINE__, "-1,000", -1000}, {__LINE__, "1,000.25", 1000.25}, {__LINE__, "2.5", 2.5},
        {__LINE__, "1,5", 1},      {__LINE__, "1,0000", 1},     {__LINE__, "12,34,567", 12},     {__LINE__, "0", 0},
        {__LINE__, "", 0},         {__LINE__, "1e3", 1000},
    };
    ExpectEach(rows, PointLocale());
}

// A classic reading that fails (out of range, or without a digit) yields 0, whatever value the stream stored.
TEST(GetValueFromDisplayString, AClassicReadingThatFails_IsZero)
{
    const Row rows[] = {
        {__LINE__, "1e999", 0}, {__LINE__, "-1e999", 0}, {__LINE__, "1e308", 1e308},
        {__LINE__, "-", 0},     {__LINE__, ".", 0},
    };
    ExpectEach(rows, PointLocale());
    ExpectEach(rows, CommaLocale());
}

TEST(GetValueFromDisplayString, UnderTheUsersLocale_ReadsZeroAndNothingAsZero)
{
    EXPECT_EQ(0.0, Locale::GetValueFromDisplayString(UTF16String()));
    EXPECT_EQ(0.0, Locale::GetValueFromDisplayString(MakeString("0")));
    EXPECT_EQ(7.0, Locale::GetValueFromDisplayString(MakeString("7")));
}

TEST(Locale, Default_IsTheClassicOne)
{
    EXPECT_EQ(std::locale::classic(), Locale::Default());
    EXPECT_EQ(&Locale::Default(), &Locale::Default());
}

TEST(Locale, Initialize_MakesTheClassicLocaleGlobal)
{
    const std::locale old = std::locale::global(CommaLocale());
    Locale::Initialize();
    EXPECT_EQ(std::locale::classic(), std::locale());
    std::locale::global(old);
}

TEST(Locale, UnknownName_GivesTheClassicLocaleInsteadOfAFailure)
{
    EXPECT_EQ(std::locale::classic(), Locale::MakeLocale("xx_NOWHERE"));
}

TEST(Locale, Native_PointsAndGroupsAsNumbersAreShown)
{
    const auto& shown = tvxcore::utility::UserNumberPunctuation();
    const auto& native = std::use_facet<std::numpunct<wchar_t>>(Locale::Native());
    EXPECT_EQ(shown.mDecimalPoint, native.decimal_point());
    EXPECT_EQ(shown.mGrouping, native.grouping());
    EXPECT_EQ(&Locale::Native(), &Locale::Native());
}

TEST(Locale, Native_IsAlwaysUsable)
{
    const std::locale old = std::locale::global(PointLocale());
    const std::locale& native = Locale::Native();
    EXPECT_NE(std::locale(), native) << "the user's locale, not the process's global one";
    for (const double number : {0.0, 1.5, -1234567.25}) {
        std::stringstream stream;
        stream.imbue(native);
        stream << std::fixed << number;
        double back = 17.0;
        stream >> back;
        EXPECT_EQ(number, back) << stream.str();
        EXPECT_FALSE(stream.fail()) << stream.str();
    }
    EXPECT_EQ(&native, &Locale::Native());
    std::locale::global(old);
}
