// Tests the number formats of locales, by the locale names that Linux users set, and compares them with those of ICU,
// from whose data the library's table was generated.
#include <tvxcore/Number.h>
#include <tvxcore/NumberPunctuation.h>

#include <CorePlatform/NumberFormat.h>
#include <ScopedEnvironmentVariableLinux.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <string>
#include <unicode/uloc.h>
#include <unicode/unum.h>
#include <unicode/uversion.h>

using namespace tvxcore::utility;
using ORLTest::ScopedEnvironmentVariable;
using ORLTest::Show;

namespace {

std::string Text(const NumberPunctuation& inPunctuation)
{
    std::string text = Show(UTF16String({inPunctuation.mDecimalPoint, ' ', inPunctuation.mThousandsSeparator, ' '}));
    for (const char size : inPunctuation.mGrouping) {
        text += std::to_string(static_cast<int>(size));
    }
    return text;
}

std::string Users(const char* inAll, const char* inNumeric, const char* inLang)
{
    const ScopedEnvironmentVariable all("LC_ALL", inAll);
    const ScopedEnvironmentVariable numeric("LC_NUMERIC", inNumeric);
    const ScopedEnvironmentVariable lang("LANG", inLang);
    return Text(Platform::FindUserPunctuation_Impl());
}

std::string Named(const std::string& inName)
{
    NumberPunctuation punctuation;
    return FindNumberPunctuation(inName.c_str(), punctuation) ? Text(punctuation) : "unknown";
}

unsigned short Symbol(const UNumberFormat* inFormat, UNumberFormatSymbol inWhich)
{
    UErrorCode error = U_ZERO_ERROR;
    UChar text[8] = {};
    ::unum_getSymbol(inFormat, inWhich, text, 8, &error);
    return text[0];
}

std::string NamedByIcu(const std::string& inName)
{
    UErrorCode error = U_ZERO_ERROR;
    UNumberFormat* const format =
        ::unum_open(UNUM_DECIMAL, nullptr, 0, (inName + "@numbers=latn").c_str(), nullptr, &error);
    NumberPunctuation punctuation;
    punctuation.mDecimalPoint = Symbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL);
    punctuation.mThousandsSeparator = Symbol(format, UNUM_GROUPING_SEPARATOR_SYMBOL);
    const char first = static_cast<char>(::unum_getAttribute(format, UNUM_GROUPING_SIZE));
    const char second = static_cast<char>(::unum_getAttribute(format, UNUM_SECONDARY_GROUPING_SIZE));
    punctuation.mGrouping = second <= 0 || second == first ? std::string(1, first) : std::string({first, second});
    ::unum_close(format);
    return Text(punctuation);
}

constexpr char kClassic[] = ". , ";
constexpr char kGerman[] = ", . 3";
constexpr char kEnglish[] = ". , 3";

} // namespace

TEST(UserNumberPunctuation, TheFirstVariableThatIsSet_DecidesTheLocale)
{
    EXPECT_EQ(kGerman, Users("de_DE.UTF-8", "en_US.UTF-8", "hi_IN.UTF-8"));
    EXPECT_EQ(kEnglish, Users(nullptr, "en_US.UTF-8", "de_DE.UTF-8"));
    EXPECT_EQ(kEnglish, Users("", "en_US.UTF-8", "de_DE.UTF-8"));
    EXPECT_EQ(kGerman, Users(nullptr, nullptr, "de_DE@euro"));
    EXPECT_EQ(", <202f> 3", Users(nullptr, nullptr, "fr_FR.UTF-8"));
    EXPECT_EQ(". , 32", Users(nullptr, nullptr, "hi_IN"));
}

TEST(UserNumberPunctuation, ClassicMissingAndUnknownLocales_GroupNothing)
{
    EXPECT_EQ(kClassic, Users("C", "de_DE", "de_DE"));
    EXPECT_EQ(kClassic, Users("C.UTF-8", nullptr, nullptr));
    EXPECT_EQ(kClassic, Users("POSIX", nullptr, nullptr));
    EXPECT_EQ(kClassic, Users(nullptr, nullptr, nullptr));
    EXPECT_EQ(kClassic, Users("xx_YY.UTF-8", nullptr, nullptr));
    EXPECT_EQ(kClassic, Users("nonsense that is no name", "de_DE", "de_DE"));
    EXPECT_EQ(kClassic, Users(std::string(5000, 'x').c_str(), nullptr, nullptr));
    EXPECT_EQ(kClassic, Users("../../etc", nullptr, nullptr));
}

TEST(FindNumberPunctuation, TheFormsOfAName_MeanOneLocale)
{
    for (const char* const name :
         {"de_CH", "de-CH", "DE_ch", "de_CH.UTF-8", "de_CH.UTF-8@euro", "de_Latn_CH", "de_CH@euro"}) {
        EXPECT_EQ(". <2019> 3", Named(name)) << name;
    }
    EXPECT_EQ(kGerman, Named("de"));
    EXPECT_EQ(kGerman, Named("de_XX")) << "an unknown region counts as none";
    for (const char* const name : {"", "_", "_DE", "d", "deu_DE_extra_long", "C", "C.UTF-8", "POSIX", "xx", "root"}) {
        EXPECT_EQ("unknown", Named(name)) << name;
    }
}

TEST(FindNumberPunctuation, EachLocaleOfIcu_IsTheSame)
{
    if (U_ICU_VERSION_MAJOR_NUM != 72) {
        GTEST_SKIP() << "the table is made from ICU 72, and another version may know better";
    }
    int compared = 0;
    for (std::int32_t i = 0; i < ::uloc_countAvailable(); ++i) {
        const std::string name = ::uloc_getAvailable(i);
        // Skipped below: the OS has no locales for world regions or second scripts.
        const bool hasSecondScript =
            name.size() > 6 && name.find('_') != std::string::npos && name[name.find('_') + 3] != '\0';
        if (hasSecondScript || name.find_first_of("0123456789") != std::string::npos || name == "en_US_POSIX") {
            continue;
        }
        EXPECT_EQ(NamedByIcu(name), Named(name)) << name;
        ++compared;
    }
    EXPECT_LT(500, compared);
}
