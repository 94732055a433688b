// Converts system errors and exception records to readable text.
#include <ORLFailureReport.h>

#include <ORLString.h>
#include <Platform/ExceptionRecords.h>
#include <Platform/SystemMessages.h>

#include <tvxcore/StringStream.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <locale>

namespace ORL {

namespace {

struct ExceptionText
{
    std::uint32_t mCode;
    const char* mText;
};

constexpr std::uint32_t kAccessViolation = 0xC0000005;
constexpr std::uint32_t kNonContinuable = 1;

constexpr ExceptionText kExceptionTexts[] = {
    {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT (The thread attempted to read or write data that is misaligned on "
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
    {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO (The thread attempted to divide an integer value by an integer divisor "
                 "of zero.)"},
    {0xC0000095, "EXCEPTION_INT_OVERFLOW (The result of an integer operation caused a carry out of the most "
                 "significant bit of the result.)"},
    {0xC0000096, "EXCEPTION_PRIV_INSTRUCTION (The thread attempted to execute an instruction whose operation is not "
                 "allowed in the current machine mode.)"},
};

void WriteAddress(tvxcore::oUTF16StringStream& ioReport, std::uint64_t inAddress)
{
    ioReport << "0x" << std::hex << inAddress << std::dec << "\r\n";
}

} // namespace

UTF16String Win32ErrorCodeToMessage(unsigned int inError)
{
    UTF16String message = FailureReport::Platform::SystemErrorMessage_Impl(inError);
    return message.empty() ? MakeString("There was an error converting this Win32 error to a message!") : message;
}

UTF16String Win32ExceptionCodeToString(unsigned long inCode)
{
    const ExceptionText* const found =
        std::find_if(std::begin(kExceptionTexts), std::end(kExceptionTexts),
                     [inCode](const ExceptionText& inText) { return inText.mCode == inCode; });
    return MakeString(found == std::end(kExceptionTexts) ? "!!! Unknown Exception type !!!" : found->mText);
}

UTF16String ReportStructuredExceptionRecordInformation(const _EXCEPTION_RECORD* inRecord)
{
    const FailureReport::Platform::ExceptionFacts facts = FailureReport::Platform::ReadExceptionRecord_Impl(inRecord);
    tvxcore::oUTF16StringStream report;
    report.imbue(std::locale::classic()); // the host's global locale might group the digits of an address
    report << "The WIN32 exception record reported the following information:\r\n";
    report << "Exception Code: " << Win32ExceptionCodeToString(facts.mCode) << "\r\n";
    report << "This exception is "
           << (facts.mFlags == kNonContinuable ? "NonContinuable (EXCEPTION_NONCONTINUABLE)." : "Continuable.")
           << "\r\n";
    report << "The exception occured at address: ";
    WriteAddress(report, facts.mAddress);
    if (facts.mCode == kAccessViolation) {
        report << "While " << (facts.mFirstParameter != 0 ? "Writing to address:" : "Reading from address:");
        WriteAddress(report, facts.mSecondParameter);
    }
    return report.str();
}

} // namespace ORL
