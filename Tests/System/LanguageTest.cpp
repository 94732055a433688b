// Tests the language of the process: GetLanguageID, SetLanguageID, and the value stored in the registry.
#include <PrivateHost.h>
#include <TextHelpers.h>

#include <ORLHostSettings.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>
#include <System/LanguageInternals.h>
#include <tvxcore/Trace.h>

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr char kCategory[] = "ORL.ResourceUtils.GetLanguageIDFromRegistry";

std::vector<std::string> sTraced;

void KeepTrace(const unsigned char* inText)
{
    sTraced.emplace_back(reinterpret_cast<const char*>(inText));
}

class Language : public testing::Test
{
protected:
    void SetUp() override
    {
        UsePrivateHost();
        DeletePrivateHostSettings();
        Internal::ForgetLanguage();
        sTraced.clear();
        tvxcore::debug::InstallTraceSink(&KeepTrace);
        tvxcore::debug::SetTraceLevel(kCategory, 0);
    }

    void TearDown() override
    {
        tvxcore::debug::ShutdownTraceManager();
        Internal::ForgetLanguage();
    }

    static RegistryKey BaseKey()
    {
        RegistryKey key;
        EXPECT_TRUE(ResultSucceeded(key.Create(RegistryRootKeys::kUser, GetRegistryBaseKey())));
        return key;
    }

    static void Store(const std::string& inLanguage)
    {
        EXPECT_EQ(kSuccess, BaseKey().SetStringValue(Units(u"Language"), inLanguage));
    }

    static unsigned short Read(const std::string& inStored)
    {
        Store(inStored);
        Internal::ForgetLanguage();
        return GetLanguageID();
    }
};

struct TableRow
{
    const char* mName;
    unsigned short mID;
    unsigned int mCodePage;
};

constexpr TableRow kTable[] = {
    {"en_US", 1033, 0},   {"de_DE", 1031, 0},   {"fr_FR", 1036, 0}, {"it_IT", 1040, 0},
    {"ja_JP", 1041, 932}, {"es_ES", 1034, 0},   {"nl_NL", 1043, 0}, {"sv_SE", 1053, 0},
    {"cs_CZ", 1029, 0},   {"ko_KR", 1042, 949}, {"pl_PL", 1045, 0}, {"pt_BR", 1046, 0},
    {"ru_RU", 1049, 0},   {"tr_TR", 1055, 0},   {"zh_CN", 2052, 0}, {"zh_TW", 1028, 0},
};

} // namespace

TEST_F(Language, WithoutAStoredValue_IsEnglishAndTheRegistryIsReadOnce)
{
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_EQ(1u, sTraced.size());
    Store("de_DE");
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_EQ("en_US", Show(GetLanguageString()));
    EXPECT_EQ(9, GetPrimaryLanguageID());
    EXPECT_EQ(0u, GetConversionCodePage());
    EXPECT_EQ(1u, sTraced.size());
}

TEST_F(Language, EveryReader_MayBeTheFirst)
{
    Store("ko_KR");
    EXPECT_EQ(1042, GetLanguageID());
    Internal::ForgetLanguage();
    EXPECT_EQ(18, GetPrimaryLanguageID());
    Internal::ForgetLanguage();
    EXPECT_EQ("ko_KR", Show(GetLanguageString()));
    Internal::ForgetLanguage();
    EXPECT_EQ(949u, GetConversionCodePage());
    EXPECT_TRUE(sTraced.empty());
}

TEST_F(Language, SetBeforeAnyRead_KeepsTheRegistryFromBeingRead)
{
    Store("de_DE");
    SetLanguageID(1033);
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_EQ("en_US", Show(GetLanguageString()));
}

TEST_F(Language, SetLater_ReplacesWhatWasRead)
{
    EXPECT_EQ(1031, Read("de_DE"));
    SetLanguageID(1036);
    EXPECT_EQ(1036, GetLanguageID());
    SetLanguageString(Units(u"it_IT"));
    EXPECT_EQ(1040, GetLanguageID());
    std::string stored;
    EXPECT_EQ(kSuccess, BaseKey().GetStringValue(Units(u"Language"), stored));
    EXPECT_EQ("de_DE", stored);
}

TEST_F(Language, OfTheTable_HasItsStringIdentifierAndCodePage)
{
    for (const TableRow& row : kTable) {
        SetLanguageString(MakeString(row.mName));
        EXPECT_EQ(row.mID, GetLanguageID()) << row.mName;
        SetLanguageID(0);
        SetLanguageID(row.mID);
        EXPECT_EQ(row.mName, Show(GetLanguageString()));
        EXPECT_EQ(row.mCodePage, GetConversionCodePage()) << row.mName;
        EXPECT_EQ(row.mID, Read(row.mName)) << row.mName;
    }
}

TEST_F(Language, UnknownString_IsZeroWhichHasTheStringOfEnglish)
{
    SetLanguageString(Units(u"xx_XX"));
    EXPECT_EQ(0, GetLanguageID());
    EXPECT_EQ("en_US", Show(GetLanguageString()));
    EXPECT_EQ(0u, GetConversionCodePage());
}

TEST_F(Language, OutsideTheTable_KeepsItsIdentifier)
{
    SetLanguageID(3081);
    EXPECT_EQ(3081, GetLanguageID());
    EXPECT_EQ("en_US", Show(GetLanguageString()));
    EXPECT_EQ(0u, GetConversionCodePage());
    EXPECT_EQ(9, GetPrimaryLanguageID());
}

TEST_F(Language, Japanese_HasItsCodePageAndString)
{
    SetLanguageID(1041);
    EXPECT_EQ(932u, GetConversionCodePage());
    EXPECT_EQ("ja_JP", Show(GetLanguageString()));
}

TEST_F(Language, PrimaryIdentifier_IsTheLowTenBits)
{
    SetLanguageID(2052);
    EXPECT_EQ(4, GetPrimaryLanguageID());
    SetLanguageID(0xFFFF);
    EXPECT_EQ(1023, GetPrimaryLanguageID());
}

TEST_F(Language, OtherStrings_AreReadAsDecimalNumbers)
{
    struct Row
    {
        int mLine;
        const char16_t* mText;
        unsigned short mExpected;
    };
    const Row rows[] = {
        {__LINE__, u"1031", 1031},     {__LINE__, u"0x407", 0},        {__LINE__, u"german", 0},
        {__LINE__, u"EN_US", 0},       {__LINE__, u"de_DE ", 0},       {__LINE__, u"1031 ", 1031},
        {__LINE__, u" 1031", 1031},    {__LINE__, u"+1031", 1031},     {__LINE__, u"1031abc", 1031},
        {__LINE__, u"65536", 0},       {__LINE__, u"70000", 4464},     {__LINE__, u"4294967295", 65535},
        {__LINE__, u"4294967296", 0},  {__LINE__, u"-1", 65535},       {__LINE__, u"", 0},
        {__LINE__, u"00001031", 1031}, {__LINE__, u"\u0661\u0660", 0}, {__LINE__, u"12,345", 12},
    };
    for (const Row& row : rows) {
        SetLanguageID(7);
        SetLanguageString(Units(row.mText));
        EXPECT_EQ(row.mExpected, GetLanguageID()) << "row at line " << row.mLine;
    }
}

TEST_F(Language, StoredAsANumber_IsThatNumber)
{
    EXPECT_EQ(1031, Read("1031"));
    EXPECT_EQ(0, Read("german"));
    EXPECT_TRUE(sTraced.empty());
}

TEST_F(Language, EmptyOrOfAnotherType_CountsAsMissing)
{
    EXPECT_EQ(1033, Read(""));
    EXPECT_EQ(1u, sTraced.size());
    EXPECT_EQ(kSuccess, BaseKey().SetUInt32Value(Units(u"Language"), 1031));
    Internal::ForgetLanguage();
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_EQ(2u, sTraced.size());
}

TEST_F(Language, MissingValue_IsTracedOnOneLine)
{
    GetLanguageID();
    ASSERT_EQ(1u, sTraced.size());
    const std::size_t category = sTraced[0].find(std::string("<") + kCategory + "> <0> ");
    ASSERT_NE(std::string::npos, category) << sTraced[0];
    EXPECT_EQ("Unable to obtain the User 'Language' registry key at: Software\\Zerin\\" + UsePrivateHost()
                  + "\\5.0\\ Defaulting to 'en_US'.\n",
              sTraced[0].substr(sTraced[0].find("Unable")));
}

TEST_F(Language, MissingValue_IsNotTracedWhereTheCategoryIsOff)
{
    tvxcore::debug::SetTraceLevel(kCategory, tvxcore::debug::kTraceOff);
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_TRUE(sTraced.empty());
    tvxcore::debug::SetTraceLevelOfAll(0); // a category without its own level follows the default level
    EXPECT_EQ(1033, GetLanguageID());
    EXPECT_TRUE(sTraced.empty());
}

// The first reader of the language acquires the lock of the registry keys while it holds its own.
TEST_F(Language, EightFirstReadersBesideTheKeys_FetchOnceAndEnd)
{
    Store("ja_JP");
    for (int round = 0; round < 200; ++round) {
        Internal::ForgetLanguage();
        std::atomic<bool> go{false};
        std::vector<std::thread> threads;
        std::atomic<int> right{0};
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&, i] {
                while (!go.load()) {
                }
                const bool isRight = i % 2 == 0 ? GetLanguageID() == 1041 : !GetRegistrySettingsKey().empty();
                right += isRight ? 1 : 0;
            });
        }
        go = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
        ASSERT_EQ(8, right.load());
    }
    EXPECT_TRUE(sTraced.empty());
}
