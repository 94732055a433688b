#include <tvxcore/Debug.h>

#include <Reports/StandardError.h>

#include <atomic>

namespace tvxcore {
namespace debug {

namespace {

bool ReportAssertOnStandardError(bool&, const char* inExpression, const unsigned char* inMessage, const char* inFile,
                                 long inLine, const char* inFunction)
{
    const char* const message = reinterpret_cast<const char*>(inMessage);
    WriteStandardErrorLine("Assertion failed: %s, %s:%ld, in %s%s%s", inExpression, inFile, inLine, inFunction,
                           *message != '\0' ? ": " : "", message);
    return true;
}

bool ReportContractOnStandardError(const char* inExpression, const char* inFile, long inLine)
{
    WriteStandardErrorLine("Contract broken: %s, %s:%ld", inExpression, inFile, inLine);
    return true;
}

constexpr long kDebug = 0;
constexpr long kIgnoreOnce = 1; // neither "debug" nor "ignore for good"

long DisplayOnStandardError(const char* inTitle, const char* inText)
{
    WriteStandardErrorLine("%s\n%s", inTitle, inText);
    return IsDebuggerAttached() ? kDebug : kIgnoreOnce;
}

std::atomic<decltype(Dialogs::mAssert)> sAssert{&ReportAssertOnStandardError};
std::atomic<decltype(Dialogs::mContract)> sContract{&ReportContractOnStandardError};
std::atomic<decltype(Dialogs::mDisplay)> sDisplay{&DisplayOnStandardError};

// Exchanges one handler. Null means the default, as argument and as result.
template <class Function>
Function Install(std::atomic<Function>& ioSlot, Function inNew, Function inDefault)
{
    const Function old = ioSlot.exchange(inNew != nullptr ? inNew : inDefault);
    return old != inDefault ? old : nullptr;
}

} // namespace

bool BreakAfterAssertDialog(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage,
                            const char* inFile, long inLine, const char* inFunction)
{
    return sAssert.load()(ioIgnore, inExpression, inMessage, inFile, inLine, inFunction);
}

bool BreakAfterContractDialog(const char* inExpression, const char* inFile, long inLine)
{
    return sContract.load()(inExpression, inFile, inLine);
}

long DisplayAssert(const char* inTitle, const char* inText)
{
    return sDisplay.load()(inTitle, inText);
}

Dialogs InstallDialogs(const Dialogs& inDialogs)
{
    Dialogs old;
    old.mAssert = Install(sAssert, inDialogs.mAssert, &ReportAssertOnStandardError);
    old.mContract = Install(sContract, inDialogs.mContract, &ReportContractOnStandardError);
    old.mDisplay = Install(sDisplay, inDialogs.mDisplay, &DisplayOnStandardError);
    return old;
}

} // namespace debug
} // namespace tvxcore
