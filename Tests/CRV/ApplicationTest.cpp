#include <CRV/Application.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

void ForgetAll()
{
    CRV::SetApplicationName(nullptr);
    CRV::SetApplicationVersion(nullptr);
    CRV::SetApplicationType(CRV::kApplicationType_Default);
}

// Resets the host's values before and after each test, so that the order of tests does not matter.
class Application : public ::testing::Test
{
protected:
    void SetUp() override { ForgetAll(); }
    void TearDown() override { ForgetAll(); }
};

// A host may set values before main: they must survive the construction of our own objects.
const char* const sNameAtLoad = [] {
    CRV::SetApplicationName("set at load");
    return CRV::GetApplicationName();
}();

} // namespace

TEST_F(Application, SetAtLoad_IsKept)
{
    EXPECT_STREQ("set at load", sNameAtLoad);
}

TEST_F(Application, NothingSaid_AnswersTheDefaults)
{
    EXPECT_STREQ("ORL", CRV::GetApplicationName());
    EXPECT_STREQ("1.0", CRV::GetApplicationVersion());
    EXPECT_EQ(CRV::kApplicationType_Default, CRV::GetApplicationType());
}

TEST_F(Application, Set_CopiesTheText)
{
    std::string name = "Cutter";
    std::string version = "12.4.1";
    CRV::SetApplicationName(name.c_str());
    CRV::SetApplicationVersion(version.c_str());
    CRV::SetApplicationType(CRV::kApplicationType_SystemCodePage);
    name = "xxxxxx";
    version = "xxxxxx";
    EXPECT_STREQ("Cutter", CRV::GetApplicationName());
    EXPECT_STREQ("12.4.1", CRV::GetApplicationVersion());
    EXPECT_EQ(1, CRV::GetApplicationType());
}

TEST_F(Application, SetAgain_LeavesEarlierAnswersValid)
{
    CRV::SetApplicationName("first");
    const char* const first = CRV::GetApplicationName();
    CRV::SetApplicationName("second");
    EXPECT_STREQ("first", first);
    EXPECT_STREQ("second", CRV::GetApplicationName());
    CRV::SetApplicationName("first");
    EXPECT_EQ(first, CRV::GetApplicationName()) << "the same text is kept once";
}

TEST_F(Application, SetToNull_BringsTheDefaultBack)
{
    CRV::SetApplicationName("x");
    CRV::SetApplicationVersion("x");
    CRV::SetApplicationName(nullptr);
    CRV::SetApplicationVersion(nullptr);
    EXPECT_STREQ("ORL", CRV::GetApplicationName());
    EXPECT_STREQ("1.0", CRV::GetApplicationVersion());
}

TEST_F(Application, SetToItsOwnAnswerOrToNothing_IsKept)
{
    CRV::SetApplicationName("same");
    CRV::SetApplicationName(CRV::GetApplicationName());
    EXPECT_STREQ("same", CRV::GetApplicationName());
    CRV::SetApplicationName("");
    EXPECT_STREQ("", CRV::GetApplicationName());
}

TEST_F(Application, SetWhileOthersRead_GivesOneOfTheTexts)
{
    CRV::SetApplicationName("even");
    std::atomic<bool> done{false};
    std::vector<std::thread> readers;
    std::atomic<int> strange{0};
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            while (!done.load()) {
                const std::string name = CRV::GetApplicationName();
                strange += name != "even" && name != "odd";
            }
        });
    }
    for (int i = 0; i < 20000; ++i) {
        CRV::SetApplicationName(i % 2 == 0 ? "odd" : "even");
    }
    done = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(0, strange.load());
}

TEST_F(Application, MoreTextThanTheLibraryHasRoomFor_EachAnswerStaysValid)
{
    std::vector<std::string> texts;
    std::vector<const char*> answers;
    for (std::size_t i = 0; i < 200; ++i) {
        texts.push_back(std::to_string(i) + std::string(i, 'x'));
        CRV::SetApplicationName(texts.back().c_str());
        answers.push_back(CRV::GetApplicationName());
    }
    const std::string longest(10000, 'y');
    CRV::SetApplicationName(longest.c_str());
    EXPECT_EQ(longest, CRV::GetApplicationName());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(texts[i], answers[i]);
    }
}
