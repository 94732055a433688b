// Tests the alert for uncaught exceptions and the top-level handler that shows it.
#include <ORLFailureReport.h>
#include <ORLTVXErrorManager.h>
#include <ORLThreadManager.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <tvxcore/Executor.h>

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

const std::string kTitle = "Unhandled Exception caught!";

// Returns the text of the alert on a thread without a record.
std::string AlertText(const std::string& inBegin)
{
    return inBegin + "ThreadName: Unnamed Thread\r\nThreadID: " + std::to_string(tvxcore::threads::GetCurrentThreadID())
           + "\r\nCurrentModule: Unnamed Module\r\n\r\n"
             "Press 'debug' to re-throw the exception (usually to the debugger).\r\n";
}

struct Answer
{
    bool mResult;
    bool mIgnore;
};

Answer AnswerTo(long inChoice, bool inIgnore = false)
{
    CheckRecorder recorder;
    recorder.mDisplayChoice = inChoice;
    Answer answer{false, inIgnore};
    answer.mResult = ThrowAfterUnhandledExceptionAlert(answer.mIgnore, "text");
    return answer;
}

long Execute(const boost::function0<long>& inFunction)
{
    TVXErrorManager manager;
    return manager.ExecuteFunctionWithTopLevelExceptionHandler(inFunction);
}

long ThrowStandard()
{
    throw std::runtime_error("the disk is on fire");
}

long ThrowNumber()
{
    throw 17;
}

// The "never again" flags last as long as the process, so each test of them runs in its own process.
void RunInChildProcess(const std::function<bool()>& inStory)
{
    EXPECT_EXIT(std::_Exit(inStory() ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace

TEST(UnhandledExceptionAlert, Text_NamesExceptionThreadAndModule)
{
    CheckRecorder recorder;
    bool ignore = false;
    ThrowAfterUnhandledExceptionAlert(ignore, "the disk is on fire");
    const std::vector<CheckReport> shown = recorder.Reports();
    ASSERT_EQ(1u, shown.size());
    ExpectReport(shown[0])
        .Kind(CheckReport::kDisplay)
        .Expression(kTitle)
        .Message(AlertText("the disk is on fire\r\n\r\n"));
}

TEST(UnhandledExceptionAlert, WithoutAText_BeginsAtTheThreadName)
{
    CheckRecorder recorder;
    bool ignore = false;
    ThrowAfterUnhandledExceptionAlert(ignore, "");
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Message(AlertText(""));
}

TEST(UnhandledExceptionAlert, OnANamedThread_ShowsItsNamesAsUTF8)
{
    CheckRecorder recorder;
    ThreadManager::RegisterMainThread(); // enables the records of threads
    bool ignore = false;
    ThrowAfterUnhandledExceptionAlert(ignore, "");
    const ThreadManager::ThreadInfo& info = *ThreadManager::GetCurrentThreadInfo();
    const std::string name = MakeStdString(info.GetThreadName());
    const std::string module = MakeStdString(info.GetCurrentModule());
    ThreadManager::UnregisterMainThread();
    ASSERT_EQ(1u, recorder.Reports().size());
    EXPECT_NE("Unnamed Thread", name);
    EXPECT_EQ(0u, recorder.Reports()[0].mMessage.find("ThreadName: " + name + "\r\n"));
    EXPECT_NE(std::string::npos, recorder.Reports()[0].mMessage.find("CurrentModule: " + module + "\r\n\r\n"));
}

TEST(UnhandledExceptionAlert, EachChoice_HasItsAnswer)
{
    struct Row
    {
        long mChoice;
        bool mResult;
        bool mIgnore;
    };
    for (const Row& row : {Row{0, true, false}, Row{1, false, false}, Row{2, false, true}, Row{3, false, false},
                           Row{4, false, true}, Row{5, false, false}, Row{-1, false, false}}) {
        const Answer answer = AnswerTo(row.mChoice);
        EXPECT_EQ(row.mResult, answer.mResult) << row.mChoice;
        EXPECT_EQ(row.mIgnore, answer.mIgnore) << row.mChoice;
    }
}

TEST(UnhandledExceptionAlert, FlagThatIsSetAlready_StaysSetAndTheUserIsAsked)
{
    const Answer answer = AnswerTo(0, true);
    EXPECT_TRUE(answer.mResult);
    EXPECT_TRUE(answer.mIgnore);
}

TEST(TopLevelHandler, FunctionThatReturns_GivesItsAnswerUnseen)
{
    CheckRecorder recorder;
    EXPECT_EQ(17, Execute([] { return 17l; }));
    EXPECT_EQ(-1, Execute([] { return -1l; }));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(TopLevelHandler, ThroughTheBaseClass_ReachesTheHostsManager)
{
    CheckRecorder recorder;
    TVXErrorManager manager;
    tvxcore::config::ErrorManager& base = manager;
    EXPECT_EQ(0, base.ExecuteFunctionWithTopLevelExceptionHandler(&ThrowStandard));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kDisplay).size());
}

TEST(TopLevelHandler, Exceptions_AreShownByTheirTextAndDoNotLeave)
{
    struct Row
    {
        int mLine;
        boost::function0<long> mFunction;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, &ThrowStandard, "the disk is on fire\r\n\r\n"},
        {__LINE__, &ThrowNumber, "Unknown Exception\r\n\r\n"},
        {__LINE__, boost::function0<long>(), "call to empty boost::function\r\n\r\n"},
    };
    for (const Row& row : rows) {
        for (const long choice : {0l, 1l}) {
            CheckRecorder recorder;
            recorder.mDisplayChoice = choice;
            EXPECT_EQ(choice == 0 ? 1 : 0, Execute(row.mFunction)) << "row at line " << row.mLine;
            ASSERT_EQ(1u, recorder.Reports().size()) << "row at line " << row.mLine;
            ExpectReport(recorder.Reports()[0]).Expression(kTitle);
            EXPECT_EQ(AlertText(row.mText), recorder.Reports()[0].mMessage) << "row at line " << row.mLine;
        }
    }
}

TEST(TopLevelHandler, FunctionObject_IsGoneWhenTheAnswerIsThere)
{
    CheckRecorder recorder;
    const std::shared_ptr<int> held = std::make_shared<int>(0);
    for (const bool throws : {false, true}) {
        TVXErrorManager manager;
        manager.ExecuteFunctionWithTopLevelExceptionHandler([held, throws] { return throws ? ThrowNumber() : 0l; });
        EXPECT_EQ(1, held.use_count());
    }
}

TEST(TopLevelHandlerDeathTest, NeverAgain_HoldsForExceptionsOfThatClauseAlone)
{
    for (const long choice : {2l, 4l}) {
        RunInChildProcess([choice] {
            CheckRecorder recorder;
            recorder.mDisplayChoice = choice;
            const bool first = Execute(&ThrowStandard) == 0 && recorder.Reports().size() == 1;
            recorder.mDisplayChoice = 0; // would be used only if the alert were displayed
            const bool silent = Execute(&ThrowStandard) == 0 && recorder.Reports().size() == 1;
            const bool other = Execute(&ThrowNumber) == 1 && recorder.Reports().size() == 2;
            return first && silent && other;
        });
    }
}

TEST(TopLevelHandlerDeathTest, NeverAgainOfAnUnknownException_LeavesStandardOnesHeard)
{
    RunInChildProcess([] {
        CheckRecorder recorder;
        recorder.mDisplayChoice = 2;
        const bool first = Execute(&ThrowNumber) == 0 && recorder.Reports().size() == 1;
        const bool silent = Execute(&ThrowNumber) == 0 && recorder.Reports().size() == 1;
        recorder.mDisplayChoice = 0;
        const bool other = Execute(&ThrowStandard) == 1 && recorder.Reports().size() == 2;
        return first && silent && other;
    });
}
