#include <ORLFailureReport.h>

#include <ORLDebug.h>
#include <ORLString.h>
#include <ORLTVXErrorManager.h>
#include <ORLThreadManager.h>

#include <tvxcore/Debug.h>
#include <tvxcore/Executor.h>

#include <exception>
#include <locale>
#include <sstream>

namespace ORL {

namespace {

// The user's choices in the alert.
constexpr long kDebug = 0;
constexpr long kNeverAgain = 2;
constexpr long kNeverAgainAtAll = 4;

constexpr const char* kLineEnd = "\r\n";

std::string AlertText(const std::string& inWhat)
{
    std::ostringstream text;
    text.imbue(std::locale::classic()); // the host may have set a different global locale
    if (!inWhat.empty()) {
        text << inWhat << kLineEnd << kLineEnd;
    }
    const ThreadManager::ThreadInfo& thread = *ThreadManager::GetCurrentThreadInfo();
    text << "ThreadName: " << MakeStdString(thread.GetThreadName()) << kLineEnd;
    text << "ThreadID: " << tvxcore::threads::GetCurrentThreadID() << kLineEnd;
    text << "CurrentModule: " << MakeStdString(thread.GetCurrentModule()) << kLineEnd << kLineEnd;
    text << "Press 'debug' to re-throw the exception (usually to the debugger)." << kLineEnd;
    return text.str();
}

// Returns 1 if the user chose to debug, otherwise 0.
long AlertUnlessIgnored(Debug::IgnoreFlag& ioIgnore, const char* inWhat)
{
    if (ioIgnore.load(std::memory_order_relaxed)) {
        return 0;
    }
    bool ignore = false;
    const bool wantsToDebug = ThrowAfterUnhandledExceptionAlert(ignore, inWhat);
    if (ignore) {
        ioIgnore.store(true, std::memory_order_relaxed);
    }
    if (wantsToDebug && tvxcore::debug::IsDebuggerAttached()) {
        ORL_BREAKPOINT_TRAP();
    }
    return wantsToDebug ? 1 : 0;
}

} // namespace

bool ThrowAfterUnhandledExceptionAlert(bool& ioIgnore, const std::string& inWhat)
{
    const std::string text = AlertText(inWhat);
    const long choice = tvxcore::debug::DisplayAssert("Unhandled Exception caught!", text.c_str());
    if (choice == kNeverAgain || choice == kNeverAgainAtAll) {
        ioIgnore = true;
    }
    return choice == kDebug;
}

long TVXErrorManager::ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction)
{
    try {
        return inFunction();
    } catch (const std::exception& exception) {
        static Debug::IgnoreFlag sIgnore{false};
        return AlertUnlessIgnored(sIgnore, exception.what());
    } catch (...) {
        static Debug::IgnoreFlag sIgnore{false};
        return AlertUnlessIgnored(sIgnore, "Unknown Exception");
    }
}

} // namespace ORL
