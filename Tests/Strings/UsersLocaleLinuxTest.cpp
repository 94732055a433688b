// Tests a process in its user's locale: displayed numbers can be parsed back, whether or not the C library has the
// locale.
#include <ProcessRunner.h>
#include <ScopedEnvironmentVariableLinux.h>
#include <TempFolder.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

std::string HostUnder(const char* inAll, const char* inNumeric, const char* inLang)
{
    const ScopedEnvironmentVariable all("LC_ALL", inAll);
    const ScopedEnvironmentVariable numeric("LC_NUMERIC", inNumeric);
    const ScopedEnvironmentVariable lang("LANG", inLang);
    const ProcessResult result = RunBesideThisProgram("users_locale_host", {});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    return result.mOutput;
}

} // namespace

TEST(UsersLocale, ThatIsNotInstalled_ShowsAndReadsInOneStyle)
{
    EXPECT_EQ("1.234.567,5 reads back, comma\n", HostUnder("de_DE.UTF-8", nullptr, nullptr));
    EXPECT_EQ("1.234.567,5 reads back, comma\n", HostUnder(nullptr, "de_DE.UTF-8", "en_US.UTF-8"));
    EXPECT_EQ("1\u202F234\u202F567,5 reads back, comma\n", HostUnder(nullptr, nullptr, "fr_FR.UTF-8"));
    EXPECT_EQ("12,34,567.5 reads back, point\n", HostUnder("hi_IN.UTF-8", nullptr, nullptr));
    EXPECT_EQ("1,234,567.5 reads back, point\n", HostUnder("ar_EG.UTF-8", nullptr, nullptr)) << "digits that are read";
}

TEST(UsersLocale, ThatIsClassicUnknownOrMissing_IsTheClassicOne)
{
    EXPECT_EQ("1234567.5 reads back, point\n", HostUnder("C", "de_DE", "de_DE"));
    EXPECT_EQ("1234567.5 reads back, point\n", HostUnder(nullptr, nullptr, nullptr));
    EXPECT_EQ("1234567.5 reads back, point\n", HostUnder("xx_YY.UTF-8", nullptr, nullptr));
}

// The test compiles a locale that the C library can load and the library's own table lacks.
TEST(UsersLocale, ThatOnlyTheCLibraryKnows_ShowsAndReadsInItsStyle)
{
    const TempFolder folder;
    std::string map = "<code_set_name> ASCII\n<mb_cur_max> 1\n<mb_cur_min> 1\nCHARMAP\n";
    for (unsigned character = 0; character < 128; ++character) {
        char line[40];
        std::snprintf(line, sizeof(line), "<U%04X> \\x%02x x\n", character, character);
        map += line;
    }
    folder.MakeFile("map", map + "END CHARMAP\n");
    folder.MakeFile("source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 2;2\nEND LC_NUMERIC\n");
    // The exit code is ignored: localedef warns about missing categories and fails, although it made the locale.
    static_cast<void>(std::system(
        ("cd '" + folder.Host().string() + "' && localedef -c -i source -f ./map ./own_made 2>/dev/null").c_str()));
    const ScopedEnvironmentVariable path("LOCPATH", folder.Host().c_str());
    EXPECT_EQ("1.23.45.67,5 reads back, comma\n", HostUnder("own_made", nullptr, nullptr));
}
