// Tests the default code page: that of a Windows machine with the user's locale.
#include <Linux/CodePages/LinuxDefaultCodePage.h>
#include <ORLStringUtils.h>
#include <ProcessRunner.h>
#include <ScopedEnvironmentVariableLinux.h>

#include <gtest/gtest.h>

using namespace ORL;
using ORL::Linux::CodePageOfLocale;
using ORLTest::ScopedEnvironmentVariable;

TEST(DefaultCodePage, OfALocale_FollowsItsLanguage)
{
    struct Row
    {
        int mLine;
        const char* mLocale;
        unsigned mCodePage;
    };
    const Row rows[] = {
        {__LINE__, "ru_RU.UTF-8", 1251},
        {__LINE__, "ja_JP", 932},
        {__LINE__, "ja_JP.eucJP", 932},
        {__LINE__, "ja", 932},
        {__LINE__, "ko_KR.UTF-8", 949},
        {__LINE__, "zh_CN.UTF-8", 936},
        {__LINE__, "zh_SG", 936},
        {__LINE__, "zh_TW.UTF-8", 950},
        {__LINE__, "zh_HK.UTF-8", 950},
        {__LINE__, "zh", 936},
        {__LINE__, "th_TH.UTF-8", 874},
        {__LINE__, "pl_PL.UTF-8", 1250},
        {__LINE__, "cs_CZ@euro", 1250},
        {__LINE__, "sr_RS.UTF-8", 1251},
        {__LINE__, "sr_RS@latin", 1250},
        {__LINE__, "sr_RS.UTF-8@latin", 1250},
        {__LINE__, "el_GR.UTF-8", 1253},
        {__LINE__, "tr_TR.UTF-8", 1254},
        {__LINE__, "uz_UZ", 1254},
        {__LINE__, "uz_UZ@cyrillic", 1251},
        {__LINE__, "he_IL.UTF-8", 1255},
        {__LINE__, "ar_EG.UTF-8", 1256},
        {__LINE__, "pa_PK", 1256},
        {__LINE__, "pa_IN", 1252},
        {__LINE__, "lv_LV.UTF-8", 1257},
        {__LINE__, "vi_VN", 1258},
        {__LINE__, "en_US.UTF-8", 1252},
        {__LINE__, "de_DE@euro", 1252},
        {__LINE__, "C", 1252},
        {__LINE__, "C.UTF-8", 1252},
        {__LINE__, "POSIX", 1252},
        {__LINE__, "xx_YY.bogus", 1252},
        {__LINE__, "", 1252},
        {__LINE__, "@", 1252},
        {__LINE__, "_", 1252},
        {__LINE__, "r", 1252},
        {__LINE__, "russian", 1252},
        {__LINE__, "ru", 1251},
        {__LINE__, "/usr/lib/locale/ru_RU", 1252},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mCodePage, CodePageOfLocale(row.mLocale)) << "row at line " << row.mLine;
    }
}

TEST(DefaultCodePage, SetByTheHost_ReplacesThatOfTheUser)
{
    const unsigned ofUser = StringUtils::GetDefaultCodePage();
    for (const unsigned page : {437u, 874u, 932u, 936u, 949u, 950u, 1250u, 1258u}) {
        EXPECT_EQ(kSuccess, StringUtils::Linux::SetDefaultCodePage(page));
        EXPECT_EQ(page, StringUtils::GetDefaultCodePage());
    }
    for (const unsigned page : {1u, 850u, 1259u, 65001u, 0xFFFFFFFFu}) {
        EXPECT_EQ(kGeneralFailure, StringUtils::Linux::SetDefaultCodePage(page)) << page;
        EXPECT_EQ(1258u, StringUtils::GetDefaultCodePage());
    }
    EXPECT_EQ(kSuccess, StringUtils::Linux::SetDefaultCodePage(0));
    EXPECT_EQ(ofUser, StringUtils::GetDefaultCodePage());
}

// The first variable that is not empty is used. A process reads its environment once, so each row runs its own process.
TEST(DefaultCodePage, OfTheEnvironment_IsThatOfTheFirstVariableThatIsNotEmpty)
{
    struct Row
    {
        int mLine;
        const char* mAll;
        const char* mCharacters;
        const char* mLanguage;
        const char* mCodePage;
    };
    const Row rows[] = {
        {__LINE__, "ru_RU.UTF-8", "ja_JP.UTF-8", "pl_PL.UTF-8", "1251"},
        {__LINE__, "", "ja_JP.UTF-8", "pl_PL.UTF-8", "932"},
        {__LINE__, nullptr, "", "pl_PL.UTF-8", "1250"},
        {__LINE__, nullptr, nullptr, "C", "1252"},
        {__LINE__, nullptr, nullptr, nullptr, "1252"},
        {__LINE__, "C", "ja_JP", "ja_JP", "1252"},
    };
    for (const Row& row : rows) {
        const ScopedEnvironmentVariable all("LC_ALL", row.mAll);
        const ScopedEnvironmentVariable characters("LC_CTYPE", row.mCharacters);
        const ScopedEnvironmentVariable language("LANG", row.mLanguage);
        const ORLTest::ProcessResult result = ORLTest::RunBesideThisProgram("settings_host", {"code-page"});
        EXPECT_EQ(0, result.mExitCode) << "row at line " << row.mLine;
        EXPECT_EQ(row.mCodePage + std::string("\n"), result.mOutput) << "row at line " << row.mLine;
    }
}
