// Tests the messages for system errors and exception records.
#include <ORLFailureReport.h>
#include <ORLString.h>

#include <ExceptionRecords.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <locale>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

const std::string kNoMessage = "There was an error converting this Win32 error to a message!";

std::string Message(unsigned int inError)
{
    return MakeStdString(Win32ErrorCodeToMessage(inError));
}

std::string ExceptionText(unsigned long inCode)
{
    return MakeStdString(Win32ExceptionCodeToString(inCode));
}

std::string Report(const RecordFields& inFields)
{
    const ExceptionRecord record(inFields);
    return MakeStdString(ReportStructuredExceptionRecordInformation(record.Get()));
}

bool EndsWith(const std::string& inText, const std::string& inEnd)
{
    return inText.size() >= inEnd.size() && inText.compare(inText.size() - inEnd.size(), inEnd.size(), inEnd) == 0;
}

// Groups the digits of every number.
class Grouping : public std::numpunct<char>
{
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST(SystemErrorMessage, EveryErrorOfTheSeam_HasASentenceWithALineEnd)
{
    for (const unsigned int error :
         {0u,   2u,   3u,    4u,    5u,    6u,    8u,    17u,   19u,   31u,   32u,   33u,   38u,   39u,  50u,  53u,
          59u,  80u,  87u,   109u,  112u,  123u,  131u,  145u,  161u,  170u,  183u,  206u,  234u,  259u, 267u, 995u,
          997u, 998u, 1009u, 1018u, 1020u, 1117u, 1142u, 1177u, 1235u, 1812u, 1813u, 1814u, 1815u, 1921u}) {
        const std::string message = Message(error);
        EXPECT_NE(kNoMessage, message) << error;
        EXPECT_TRUE(EndsWith(message, "\r\n")) << error << ": " << message;
        EXPECT_GT(message.size(), 4u) << error; // the message is more than a line break
        EXPECT_EQ(message.size() - 1, message.find('\n')) << error << ": one line";
    }
}

TEST(SystemErrorMessage, NumberWithoutAText_IsTheFallbackWithoutALineEnd)
{
    for (const unsigned int error : {0x20000001u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(kNoMessage, Message(error)) << error;
    }
}

TEST(ExceptionCodeToString, KnownCodes_HaveNameAndExplanation)
{
    struct Row
    {
        unsigned long mCode;
        const char* mText;
    };
    const Row rows[] = {
        {0x80000002,
         "EXCEPTION_DATATYPE_MISALIGNMENT (The thread attempted to read or write data that is misaligned on "
         "hardware that does not provide alignment. For example, 16-bit values must be aligned on 2-byte "
         "boundaries, 32-bit values on 4-byte boundaries, and so on.)"},
        {0x80000003, "EXCEPTION_BREAKPOINT (A breakpoint was encountered.)"},
        {0x80000004, "EXCEPTION_SINGLE_STEP (A trace trap or other single-instruction mechanism signaled that one "
                     "instruction has been executed.)"},
        {0xC0000005, "EXCEPTION_ACCESS_VIOLATION (The thread attempted to read from or write to a virtual address for "
                     "which it does not have the appropriate access.)"},
        {0xC0000025, "EXCEPTION_NONCONTINUABLE_EXCEPTION (The thread attempted to continue execution after a "
                     "noncontinuable exception occurred.)"},
        {0xC000008C, "EXCEPTION_ARRAY_BOUNDS_EXCEEDED (The thread attempted to access an array element that is out of "
                     "bounds, and the underlying hardware supports bounds checking.)"},
        {0xC000008D, "EXCEPTION_FLT_DENORMAL_OPERAND (One of the operands in a floating-point operation is denormal. A "
                     "denormal value is one that is too small to represent as a standard floating-point value.)"},
        {0xC000008E, "EXCEPTION_FLT_DIVIDE_BY_ZERO (The thread attempted to divide a floating-point value by a "
                     "floating-point divisor of zero.)"},
        {0xC000008F, "EXCEPTION_FLT_INEXACT_RESULT (The result of a floating-point operation cannot be represented "
                     "exactly as a decimal fraction.)"},
        {0xC0000090, "EXCEPTION_FLT_INVALID_OPERATION (This exception represents any floating-point exception not "
                     "included in this list.)"},
        {0xC0000091, "EXCEPTION_FLT_OVERFLOW (The exponent of a floating-point operation is greater than the magnitude "
                     "allowed by the corresponding type.)"},
        {0xC0000092, "EXCEPTION_FLT_STACK_CHECK (The stack overflowed or underflowed as the result of a floating-point "
                     "operation.)"},
        {0xC0000093, "EXCEPTION_FLT_UNDERFLOW (The exponent of a floating-point operation is less than the magnitude "
                     "allowed by the corresponding type.)"},
        {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO (The thread attempted to divide an integer value by an integer "
                     "divisor of zero.)"},
        {0xC0000095, "EXCEPTION_INT_OVERFLOW (The result of an integer operation caused a carry out of the most "
                     "significant bit of the result.)"},
        {0xC0000096,
         "EXCEPTION_PRIV_INSTRUCTION (The thread attempted to execute an instruction whose operation is not "
         "allowed in the current machine mode.)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, ExceptionText(row.mCode)) << std::hex << row.mCode;
    }
}

TEST(ExceptionCodeToString, UnknownCodes_SayThat)
{
    for (const unsigned long code :
         {0x0ul, 0x1ul, 0x80000001ul, 0x80000005ul, 0xC0000006ul, 0xC0000097ul, 0xFFFFFFFFul}) {
        EXPECT_EQ("!!! Unknown Exception type !!!", ExceptionText(code)) << std::hex << code;
    }
}

TEST(ExceptionRecordReport, AccessViolation_TellsWhatWasAccessed)
{
    const std::string begin =
        "The WIN32 exception record reported the following information:\r\nException Code: " + ExceptionText(0xC0000005)
        + "\r\nThis exception is Continuable.\r\nThe exception occured at address: 0x7ff612345678\r\n";
    EXPECT_EQ(begin + "While Reading from address:0x0\r\n", Report({0xC0000005, 0, 0x7FF612345678, 0, 0}));
    EXPECT_EQ(begin + "While Writing to address:0xdeadbeef\r\n",
              Report({0xC0000005, 0, 0x7FF612345678, 1, 0xDEADBEEF}));
    EXPECT_EQ(begin + "While Writing to address:0xffffffffffffffff\r\n",
              Report({0xC0000005, 0, 0x7FF612345678, 8, ~std::uint64_t{0}}));
}

TEST(ExceptionRecordReport, OtherCodes_TellNoAccess)
{
    EXPECT_EQ("The WIN32 exception record reported the following information:\r\n"
              "Exception Code: EXCEPTION_BREAKPOINT (A breakpoint was encountered.)\r\n"
              "This exception is Continuable.\r\n"
              "The exception occured at address: 0x401000\r\n",
              Report({0x80000003, 0, 0x401000, 1, 0x1234}));
    EXPECT_EQ("The WIN32 exception record reported the following information:\r\n"
              "Exception Code: !!! Unknown Exception type !!!\r\n"
              "This exception is Continuable.\r\n"
              "The exception occured at address: 0x0\r\n",
              Report({0xE06D7363, 0, 0, 1, 2}));
}

TEST(ExceptionRecordReport, OnlyFlagsEqualToOne_AreNonContinuable)
{
    const std::string nonContinuable = "This exception is NonContinuable (EXCEPTION_NONCONTINUABLE).\r\n";
    const std::string continuable = "This exception is Continuable.\r\n";
    struct Row
    {
        std::uint32_t mFlags;
        const std::string& mLine;
    };
    for (const Row& row : {Row{0, continuable}, Row{1, nonContinuable}, Row{2, continuable}, Row{3, continuable}}) {
        EXPECT_NE(std::string::npos, Report({0x80000003, row.mFlags, 1, 0, 0}).find(row.mLine)) << row.mFlags;
    }
}

TEST(ExceptionRecordReport, GlobalLocaleThatGroupsDigits_DoesNotGroupAddresses)
{
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    const std::string report = Report({0xC0000005, 0, 0x7FF612345678, 1, 0x123456789});
    std::locale::global(before);
    EXPECT_NE(std::string::npos, report.find("0x7ff612345678\r\n"));
    EXPECT_NE(std::string::npos, report.find("0x123456789\r\n"));
}
