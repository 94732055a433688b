// Tests the number format of Windows, as the library's locale reports it.
#include <ORLString.h>
#include <Strings/LocaleInternals.h>

#include <climits>
#include <gtest/gtest.h>
#include <locale>
#include <string>

using namespace ORL;

namespace {

struct Row
{
    int mLine;
    const char* mName;
    wchar_t mPoint;
    wchar_t mSeparator;
    std::string mGrouping;
};

} // namespace

TEST(MakeLocale, OfANamedLocale_WritesNumbersAsTheSystemSays)
{
    const Row rows[] = {
        {__LINE__, "en-US", L'.', L',', "\3"},
        {__LINE__, "de-DE", L',', L'.', "\3"},
        {__LINE__, "hi-IN", L'.', L',', "\3\2"},
    };
    for (const Row& row : rows) {
        const std::locale locale = Locale::MakeLocale(row.mName);
        const auto& wide = std::use_facet<std::numpunct<wchar_t>>(locale);
        const auto& narrow = std::use_facet<std::numpunct<char>>(locale);
        EXPECT_EQ(row.mPoint, wide.decimal_point()) << row.mName;
        EXPECT_EQ(row.mSeparator, wide.thousands_sep()) << row.mName;
        EXPECT_EQ(row.mGrouping, wide.grouping()) << row.mName;
        EXPECT_EQ(static_cast<char>(row.mPoint), narrow.decimal_point()) << row.mName;
        EXPECT_EQ(static_cast<char>(row.mSeparator), narrow.thousands_sep()) << row.mName;
        EXPECT_EQ(row.mGrouping, narrow.grouping()) << row.mName;
    }
}

TEST(MakeLocale, ASeparatorBeyondOneByte_IsABlankInTheNarrowForm)
{
    const std::locale locale = Locale::MakeLocale("fr-FR");
    const auto& wide = std::use_facet<std::numpunct<wchar_t>>(locale);
    EXPECT_EQ(L',', wide.decimal_point());
    EXPECT_LT(127, wide.thousands_sep()) << "a space that does not break";
    EXPECT_EQ(' ', std::use_facet<std::numpunct<char>>(locale).thousands_sep());
}

TEST(MakeLocale, NumbersTypedInAnotherCountry_AreRead)
{
    const std::locale german = Locale::MakeLocale("de-DE");
    EXPECT_EQ(1234.5, Locale::GetValueFromDisplayString(MakeString("1.234,5"), german));
    EXPECT_EQ(1.5, Locale::GetValueFromDisplayString(MakeString("1,5"), german));
}
