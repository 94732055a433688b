#include <tvxcore/Debug.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace tvxcore::debug;

namespace {

std::atomic<int> sAsserts{0};
std::atomic<int> sContracts{0};
std::atomic<int> sDisplays{0};
std::string sSeen;

bool AnswerAssert(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage, const char* inFile,
                  long inLine, const char* inFunction)
{
    sSeen = std::string(inExpression) + "|" + reinterpret_cast<const char*>(inMessage) + "|" + inFile + "|"
            + std::to_string(inLine) + "|" + inFunction;
    ioIgnore = true;
    return false;
}

bool AnswerContract(const char* inExpression, const char* inFile, long inLine)
{
    sSeen = std::string(inExpression) + "|" + inFile + "|" + std::to_string(inLine);
    return false;
}

long AnswerDisplay(const char* inTitle, const char* inText)
{
    sSeen = std::string(inTitle) + "|" + inText;
    return 4;
}

bool CountAssert(bool&, const char*, const unsigned char*, const char*, long, const char*)
{
    ++sAsserts;
    return false;
}

bool CountContract(const char*, const char*, long)
{
    ++sContracts;
    return false;
}

long CountDisplay(const char*, const char*)
{
    ++sDisplays;
    return 1;
}

bool Assert(bool& ioIgnore, const char* inMessage)
{
    return BreakAfterAssertDialog(ioIgnore, "a == b", reinterpret_cast<const unsigned char*>(inMessage), "Source", 17,
                                  "ORL::Function");
}

// Restores the process's dialogs after each test.
class ReportDialogs : public testing::Test
{
protected:
    ~ReportDialogs() override { InstallDialogs(mBefore); }

    const Dialogs mBefore = InstallDialogs(Dialogs());
};

} // namespace

TEST_F(ReportDialogs, DefaultOfAnAssertion_WritesOneLineAndIgnoresNothing)
{
    bool ignore = false;
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Assert(ignore, "")) << "a break is wanted, if there is a debugger";
    EXPECT_EQ("Assertion failed: a == b, Source:17, in ORL::Function\n", testing::internal::GetCapturedStderr());
    EXPECT_FALSE(ignore);
    testing::internal::CaptureStderr();
    Assert(ignore, "the reason");
    EXPECT_EQ("Assertion failed: a == b, Source:17, in ORL::Function: the reason\n",
              testing::internal::GetCapturedStderr());
}

TEST_F(ReportDialogs, DefaultOfAContract_WritesOneLine)
{
    testing::internal::CaptureStderr();
    EXPECT_TRUE(BreakAfterContractDialog("a != 0", "Source", 17));
    EXPECT_EQ("Contract broken: a != 0, Source:17\n", testing::internal::GetCapturedStderr());
}

TEST_F(ReportDialogs, DefaultOfAText_WritesItAndChoosesNeitherDebugNorNeverAgain)
{
    testing::internal::CaptureStderr();
    const long choice = DisplayAssert("Title", "Text");
    EXPECT_EQ("Title\nText\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(IsDebuggerAttached() ? 0 : 1, choice);
}

TEST_F(ReportDialogs, ReportLongerThanAScreenful_IsCutAndEndsItsLine)
{
    const std::string text(10'000, 'x');
    testing::internal::CaptureStderr();
    DisplayAssert("Title", text.c_str());
    const std::string seen = testing::internal::GetCapturedStderr();
    EXPECT_EQ(4096u, seen.size());
    EXPECT_EQ("Title\nxxx", seen.substr(0, 9));
    EXPECT_EQ('\n', seen.back());
}

TEST_F(ReportDialogs, InstalledAnswers_GetEveryArgumentAndGiveTheAnswer)
{
    Dialogs own;
    own.mAssert = &AnswerAssert;
    own.mContract = &AnswerContract;
    own.mDisplay = &AnswerDisplay;
    InstallDialogs(own);
    bool ignore = false;
    EXPECT_FALSE(Assert(ignore, "why"));
    EXPECT_TRUE(ignore);
    EXPECT_EQ("a == b|why|Source|17|ORL::Function", sSeen);
    EXPECT_FALSE(BreakAfterContractDialog("c", "File", 3));
    EXPECT_EQ("c|File|3", sSeen);
    EXPECT_EQ(4, DisplayAssert("T", "X"));
    EXPECT_EQ("T|X", sSeen);
}

TEST_F(ReportDialogs, Install_GivesBackTheEarlierAnswersAndNullForTheDefaults)
{
    Dialogs own;
    own.mAssert = &AnswerAssert;
    const Dialogs defaults = InstallDialogs(own);
    EXPECT_EQ(nullptr, defaults.mAssert);
    EXPECT_EQ(nullptr, defaults.mContract);
    EXPECT_EQ(nullptr, defaults.mDisplay);
    const Dialogs earlier = InstallDialogs(Dialogs());
    EXPECT_EQ(&AnswerAssert, earlier.mAssert);
    EXPECT_EQ(nullptr, earlier.mContract);
}

TEST_F(ReportDialogs, NullMember_BringsTheDefaultBack)
{
    Dialogs own;
    own.mContract = &AnswerContract;
    InstallDialogs(own);
    InstallDialogs(Dialogs());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(BreakAfterContractDialog("a", "b", 1));
    EXPECT_NE("", testing::internal::GetCapturedStderr());
}

TEST_F(ReportDialogs, ThreadsThatReportAndInstallAtOnce_LoseNoReport)
{
    Dialogs own;
    own.mAssert = &CountAssert;
    own.mContract = &CountContract;
    own.mDisplay = &CountDisplay;
    InstallDialogs(own);
    sAsserts = sContracts = sDisplays = 0;
    constexpr int kThreads = 4;
    constexpr int kRounds = 1000;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&own] {
            bool ignore = false;
            for (int round = 0; round < kRounds; ++round) {
                Assert(ignore, "");
                BreakAfterContractDialog("c", "f", 1);
                DisplayAssert("t", "x");
                InstallDialogs(own);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(kThreads * kRounds, sAsserts);
    EXPECT_EQ(kThreads * kRounds, sContracts);
    EXPECT_EQ(kThreads * kRounds, sDisplays);
}
