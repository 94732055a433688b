#include <tvxcore/Number.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

using namespace tvxcore::utility;
using ORLTest::Show;

namespace {

// Sets one variable of the environment, or removes it, and puts it back.
class Variable
{
public:
    Variable(const char* inName, const char* inValue) : mName(inName)
    {
        if (const char* const old = std::getenv(inName)) {
            mOld = old;
        }
        Set(inValue);
    }
    ~Variable() { Set(mOld ? mOld->c_str() : nullptr); }

private:
    void Set(const char* inValue)
    {
        if (inValue != nullptr) {
            ::setenv(mName, inValue, 1);
        } else {
            ::unsetenv(mName);
        }
    }

    const char* const mName;
    std::optional<std::string> mOld;
};

std::string Shown(const char* inAll, const char* inNumeric, const char* inLang)
{
    const Variable all("LC_ALL", inAll);
    const Variable numeric("LC_NUMERIC", inNumeric);
    const Variable lang("LANG", inLang);
    return Show(NumberToString(1234567.25, 1, 2, Flags<unsigned short>(), 31));
}

} // namespace

TEST(NumberToString, TheFirstVariableThatIsSet_DecidesTheLocale)
{
    EXPECT_EQ("1.234.567,25", Shown("de_DE.UTF-8", "en_US.UTF-8", "hi_IN.UTF-8"));
    EXPECT_EQ("1,234,567.25", Shown(nullptr, "en_US.UTF-8", "de_DE.UTF-8"));
    EXPECT_EQ("1,234,567.25", Shown("", "en_US.UTF-8", "de_DE.UTF-8"));
    EXPECT_EQ("1.234.567,25", Shown(nullptr, nullptr, "de_DE@euro"));
    EXPECT_EQ("1<202f>234<202f>567,25", Shown(nullptr, nullptr, "fr_FR.UTF-8"));
    EXPECT_EQ("<0661><066c><0662><0663><0664><066c><0665><0666><0667><066b><0662><0665>",
              Shown("ar_EG", nullptr, nullptr));
}

TEST(NumberToString, ClassicMissingAndUnknownLocales_GroupNothing)
{
    EXPECT_EQ("1234567.25", Shown("C", "de_DE", "de_DE"));
    EXPECT_EQ("1234567.25", Shown("C.UTF-8", nullptr, nullptr));
    EXPECT_EQ("1234567.25", Shown("POSIX", nullptr, nullptr));
    EXPECT_EQ("1234567.25", Shown(nullptr, nullptr, nullptr));
    EXPECT_EQ("1234567.25", Shown("xx_YY.UTF-8", nullptr, nullptr));
    EXPECT_EQ("1234567.25", Shown("nonsense that is no name", "de_DE", "de_DE"));
    EXPECT_EQ("1234567.25", Shown(std::string(5000, 'x').c_str(), nullptr, nullptr));
}
