#include <ORLDebug.h>
#include <ORLTVXErrorManager.h>
#include <tvxcore/Executor.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <locale>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ORL;
using tvxcore::config::ErrorLevel;
using tvxcore::config::ReplacementValue;

namespace {

const ReplacementValue kNone;

std::string Message(const std::string& inZString, long inErrorID = 3, unsigned long inPackage = 2, int inLevel = 0)
{
    return TVXException(static_cast<ErrorLevel>(inLevel), inZString.c_str(), inPackage, inErrorID, kNone, kNone, kNone,
                        kNone)
        .what();
}

std::string Quoted(const std::string& inText)
{
    return "\"" + inText + "\" [ID 3, Package 2, Level 0]";
}

void Raise(const TVXErrorManager& inManager, int inLevel, const char* inZString = "$$$/a/b=Text", bool inFlag = true)
{
    inManager.ThrowError(static_cast<ErrorLevel>(inLevel), inZString, 105, 25, inFlag, kNone, kNone, kNone, kNone);
}

std::vector<std::string> sTexts;

/// Collects the trace output during its lifetime; the category is initially off.
class TraceRecorder
{
public:
    TraceRecorder()
    {
        sTexts.clear();
        mOld = tvxcore::debug::InstallTraceSink(
            [](const unsigned char* inText) { sTexts.emplace_back(reinterpret_cast<const char*>(inText)); });
        SetLevel(tvxcore::debug::kTraceOff);
    }

    ~TraceRecorder()
    {
        SetLevel(tvxcore::debug::kTraceOff);
        tvxcore::debug::InstallTraceSink(mOld);
    }

    void SetLevel(long inLevel) { tvxcore::debug::SetTraceLevel("ORLFoundation::TVXErrorManager", inLevel); }

private:
    tvxcore::debug::TraceSink mOld;
};

} // namespace

TEST(TVXException, Message_IsTheTextOfTheZStringAndItsNumbers)
{
    struct Row
    {
        int mLine;
        std::string mZString;
        std::string mText;
    };
    const Row rows[] = {
        {__LINE__, "$$$/key=A text", "A text"},
        {__LINE__, "$$$/key=a=b", "a=b"},
        {__LINE__, "=x", "x"},
        {__LINE__, "$$$/key=%1 of %2 %s", "%1 of %2 %s"},
        // no message
        {__LINE__, "", "Unknown TVX Exception"},
        {__LINE__, "$$$/key", "Unknown TVX Exception"},
        {__LINE__, "$$$/key=", "Unknown TVX Exception"},
        {__LINE__, "=", "Unknown TVX Exception"},
        // messages near the length limit
        {__LINE__, "$$$/key=" + std::string(198, 'x'), std::string(198, 'x')},
        {__LINE__, "$$$/key=" + std::string(199, 'x'), std::string(199, 'x')},
        {__LINE__, "$$$/key=" + std::string(200, 'x'), "(Error string too long)"},
        {__LINE__, "$$$/key=" + std::string(5000, 'x'), "(Error string too long)"},
        // the key does not count towards the limit
        {__LINE__, std::string(500, 'k') + "=Text", "Text"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Quoted(row.mText), Message(row.mZString)) << "row at line " << row.mLine;
    }
}

TEST(TVXException, Numbers_ArePrintedSigned)
{
    EXPECT_EQ("\"t\" [ID -7, Package 105, Level 4]", Message("=t", -7, 105, 4));
    EXPECT_EQ("\"t\" [ID 2147483647, Package -1, Level 0]", Message("=t", 2147483647, 0xFFFFFFFFul, 0));
}

TEST(TVXException, LongestTextWithLongestNumbers_IsCutAtTheBuffer)
{
    const std::string text(199, 'x');
    const std::string message = Message("=" + text, -2147483647, 0x80000001ul, -2147483647);
    EXPECT_EQ(255u, message.size());
    EXPECT_EQ(0u, message.find("\"" + text + "\" [ID -2147483647, Package -2147483647, Level -21474836"));
}

TEST(TVXException, Copy_CarriesItsOwnMessage)
{
    const TVXException original(tvxcore::config::kErrorLevel_Error, "=Text", 2, 3, kNone, kNone, kNone, kNone);
    const char* const first = original.what();
    const TVXException copy = original;
    EXPECT_NE(first, copy.what());
    EXPECT_STREQ(first, copy.what());
    EXPECT_EQ(first, original.what()) << "the exception's own buffer, each time";
}

TEST(TVXErrorManager, EveryLevelButOne_Throws)
{
    const TVXErrorManager manager;
    for (const int level : {0, 2, 3, 100, -1}) {
        for (const bool flag : {false, true}) {
            EXPECT_THROW(Raise(manager, level, "=Text", flag), TVXException) << "level " << level;
        }
    }
}

TEST(TVXErrorManager, ThrownError_CarriesAllThatWasRaised)
{
    const TVXErrorManager manager;
    try {
        Raise(manager, 2, "$$$/a/b=Text");
        FAIL() << "level 2 throws";
    } catch (const Exception& caught) {
        EXPECT_STREQ("\"Text\" [ID 25, Package 105, Level 2]", caught.what());
    }
}

TEST(TVXErrorManager, WarningWithTheTraceOff_ReturnsAtOnce)
{
    const TraceRecorder recorder;
    const TVXErrorManager manager;
    EXPECT_NO_THROW(Raise(manager, 1));
    EXPECT_TRUE(sTexts.empty());
}

TEST(TVXErrorManager, WarningWithTheTraceOn_IsOneLineAndSwallowed)
{
    TraceRecorder recorder;
    recorder.SetLevel(1);
    const TVXErrorManager manager;
    EXPECT_NO_THROW(Raise(manager, 1, "$$$/a/b=Text"));
    const std::string thread = std::to_string(tvxcore::threads::GetCurrentThreadID());
    ASSERT_EQ(1u, sTexts.size());
    EXPECT_EQ("<" + thread
                  + "> <ORLFoundation::TVXErrorManager> <1> $$$/a/b=TextThe warning errorID=25inZString= $$$/a/b=Text"
                    " exception was swallowed.\n",
              sTexts[0]);
}

// The line must be formatted with the classic locale: the host's global locale would group its digits.
TEST(TVXErrorManager, WarningUnderAHostsLocale_IsWrittenClassically)
{
    struct Digitwise : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '\''; }
        std::string do_grouping() const override { return "\1"; }
    };
    TraceRecorder recorder;
    recorder.SetLevel(1);
    const TVXErrorManager manager;
    const std::locale earlier = std::locale::global(std::locale(std::locale::classic(), new Digitwise));
    Raise(manager, 1);
    std::locale::global(earlier);
    ASSERT_EQ(1u, sTexts.size());
    EXPECT_EQ(std::string::npos, sTexts[0].find('\'')) << sTexts[0];
    EXPECT_NE(std::string::npos, sTexts[0].find("errorID=25")) << sTexts[0];
}

TEST(TVXErrorManager, ChangeOfTheTrace_ShowsOnTheNextWarning)
{
    TraceRecorder recorder;
    const TVXErrorManager manager;
    recorder.SetLevel(1);
    Raise(manager, 1);
    recorder.SetLevel(0);
    Raise(manager, 1);
    EXPECT_EQ(1u, sTexts.size()) << "level 0 leaves out the warnings of level 1";
    recorder.SetLevel(2);
    Raise(manager, 1);
    EXPECT_EQ(2u, sTexts.size());
}

// No level is set for the category, so only the default level can enable it.
TEST(TVXErrorManager, CategoryWithoutALevelOfItsOwn_FollowsTheLevelOfAll)
{
    tvxcore::debug::ShutdownTraceManager(); // clears the levels that other tests have set
    sTexts.clear();
    const tvxcore::debug::TraceSink old = tvxcore::debug::InstallTraceSink(
        [](const unsigned char* inText) { sTexts.emplace_back(reinterpret_cast<const char*>(inText)); });
    const TVXErrorManager manager;
    tvxcore::debug::SetTraceLevelOfAll(0);
    Raise(manager, 1);
    EXPECT_TRUE(sTexts.empty());
    tvxcore::debug::SetTraceLevelOfAll(1);
    Raise(manager, 1);
    EXPECT_EQ(1u, sTexts.size());
    tvxcore::debug::ShutdownTraceManager();
    tvxcore::debug::InstallTraceSink(old);
}

TEST(TVXErrorManager, SinkThatThrows_DoesNotMakeAWarningThrow)
{
    TraceRecorder recorder;
    recorder.SetLevel(1);
    static int sCalls = 0;
    sCalls = 0;
    tvxcore::debug::InstallTraceSink([](const unsigned char*) {
        ++sCalls;
        throw std::runtime_error("the sink");
    });
    const TVXErrorManager manager;
    EXPECT_NO_THROW(Raise(manager, 1));
    EXPECT_EQ(1, sCalls);
}

TEST(TVXErrorManager, Installed_TurnsABrokenInputContractIntoItsException)
{
    TVXErrorManager manager;
    tvxcore::config::ErrorManager* const old = tvxcore::config::InstallErrorManager(&manager);
    tvxcore::debug::Dialogs quiet;
    quiet.mContract = [](const char*, const char*, long) { return false; };
    const tvxcore::debug::Dialogs oldDialogs = tvxcore::debug::InstallDialogs(quiet);
    const bool isKept = false;
    std::string input, output;
    try {
        ORL_INPUT_CONTRACT(isKept);
    } catch (const TVXException& caught) {
        input = caught.what();
    }
    try {
        ORL_OUTPUT_CONTRACT(isKept);
    } catch (const TVXException& caught) {
        output = caught.what();
    }
    tvxcore::debug::InstallDialogs(oldDialogs);
    tvxcore::config::InstallErrorManager(old);
    EXPECT_EQ("\"An input contract violation has occurred!\" [ID 25, Package 105, Level 0]", input);
    EXPECT_EQ("\"An output contract violation has occurred!\" [ID 26, Package 105, Level 0]", output);
}
