#include <ORLTVXErrorManager.h>

#include <tvxcore/Executor.h>
#include <tvxcore/Trace.h>

#include <locale>
#include <sstream>

namespace ORL {

using tvxcore::config::ErrorLevel;
using tvxcore::config::ReplacementValue;

TVXErrorManager::TVXErrorManager() = default;
TVXErrorManager::~TVXErrorManager() = default;

namespace {

void TraceSwallowedWarning(const char* inZString, long inErrorID)
{
    // One trace site for all warnings.
    static tvxcore::debug::TraceSite sSite("ORLFoundation::TVXErrorManager", 1, true);
    if (!sSite.IsEnabled()) {
        return;
    }
    std::ostringstream line;
    line.imbue(std::locale::classic()); // the host may have set a different global locale
    line << "<" << tvxcore::threads::GetCurrentThreadID() << "> <" << sSite.Category() << "> <" << sSite.Level() << "> "
         << inZString << "The warning errorID=" << inErrorID << "inZString= " << inZString
         << " exception was swallowed." << std::endl;
    if (line.good()) { // false after an allocation failure, which leaves the line incomplete
        tvxcore::debug::Trace(reinterpret_cast<const unsigned char*>(line.str().c_str()));
    }
}

} // namespace

void TVXErrorManager::ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                                 bool, const ReplacementValue& inFirst, const ReplacementValue& inSecond,
                                 const ReplacementValue& inThird, const ReplacementValue& inFourth) const
{
    if (inLevel != tvxcore::config::kErrorLevel_Warning) {
        throw TVXException(inLevel, inZString, inPackage, inErrorID, inFirst, inSecond, inThird, inFourth);
    }
    try {
        TraceSwallowedWarning(inZString, inErrorID);
    } catch (...) {
        // A warning never throws: if memory is exhausted, its line is lost. Trace itself catches exceptions of sinks.
    }
}

} // namespace ORL
