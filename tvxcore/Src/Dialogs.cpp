#include <tvxcore/Debug.h>

#include <atomic>
#include <cstdio>

namespace tvxcore {
namespace debug {

namespace {

bool ReportAssertOnStandardError(bool&, const char* inExpression, const unsigned char* inMessage, const char* inFile,
                                 long inLine, const char* inFunction)
{
    const char* message = reinterpret_cast<const char*>(inMessage);
    std::fprintf(stderr, "Assertion failed: %s%s%s, %s:%ld, in %s\n", inExpression, *message != '\0' ? ": " : "",
                 message, inFile, inLine, inFunction);
    return true;
}

bool ReportContractOnStandardError(const char* inExpression, const char* inFile, long inLine)
{
    std::fprintf(stderr, "Contract broken: %s, %s:%ld\n", inExpression, inFile, inLine);
    return true;
}

// Nobody is there to choose: the answer is neither "debug" nor "never again".
constexpr long kIgnoreOnce = 1;

long DisplayOnStandardError(const char* inTitle, const char* inText)
{
    std::fprintf(stderr, "%s\n%s\n", inTitle, inText);
    return kIgnoreOnce;
}

std::atomic<decltype(Dialogs::mAssert)> sAssert{&ReportAssertOnStandardError};
std::atomic<decltype(Dialogs::mContract)> sContract{&ReportContractOnStandardError};
std::atomic<decltype(Dialogs::mDisplay)> sDisplay{&DisplayOnStandardError};

// Swaps one answer; null stands for the default in both directions.
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
