#include <tvxcore/Localizer.h>
#include <tvxcore/Text.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace tvxcore::config;

namespace {

std::string Localized(const char* inZString)
{
    const UTF8String text = tvxcore::utility::UTF16to8(Localizer::Get()->Localize(inZString));
    return std::string(text.begin(), text.end());
}

class Shouting : public Localizer
{
public:
    UTF16String Localize(const char* inZString) override { return Localizer::Localize(inZString) + Mark(); }
    static UTF16String Mark() { return tvxcore::utility::AsciiToUTF16("!"); }
};

class LocalizerTest : public testing::Test
{
protected:
    ~LocalizerTest() override { InstallLocalizer(mBefore); }

    Localizer* const mBefore = InstallLocalizer(nullptr);
};

} // namespace

TEST_F(LocalizerTest, BuiltInOne_GivesTheTextBehindTheFirstEqualSign)
{
    struct Row
    {
        int mLine;
        const char* mZString;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, "$$$/ORL/DiskUtils/KB=KB", "KB"},
        {__LINE__, "$$$/key=a=b", "a=b"},
        {__LINE__, "$$$/key=", ""},
        {__LINE__, "$$$/key=\xE5\xAD\x97 \xF0\x9F\x98\x80", "\xE5\xAD\x97 \xF0\x9F\x98\x80"},
        {__LINE__, "$$$/key=\xFF", "\xEF\xBF\xBD"},
        // not in the form of a ZString: returned whole
        {__LINE__, "", ""},
        {__LINE__, "plain", "plain"},
        {__LINE__, "a=b", "a=b"},
        {__LINE__, "$$$/key", "$$$/key"},
        {__LINE__, "$$$key=text", "$$$key=text"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, Localized(row.mZString)) << "row at line " << row.mLine;
    }
}

TEST_F(LocalizerTest, InstalledOne_IsAskedUntilItIsTakenOut)
{
    Shouting shouting;
    EXPECT_EQ(nullptr, InstallLocalizer(&shouting));
    EXPECT_EQ(&shouting, Localizer::Get());
    EXPECT_EQ("text!", Localized("$$$/key=text"));
    EXPECT_EQ(&shouting, InstallLocalizer(nullptr));
    EXPECT_EQ("text", Localized("$$$/key=text"));
}

TEST_F(LocalizerTest, ThreadsThatAskAndInstallAtOnce_AlwaysGetAText)
{
    Shouting shouting;
    std::atomic<int> texts{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                InstallLocalizer(round % 2 == 0 ? &shouting : nullptr);
                const std::string text = Localized("$$$/key=text");
                texts += text == "text" || text == "text!" ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(2000, texts);
}
