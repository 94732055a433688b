#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

namespace Consumer {

inline void TouchChecks()
{
    using namespace ORL;
    Touch(&Win::SystemErrorToORLResult, &IsValidAddress, ResultSucceeded(kWaitTimeout));
    if (IsWanted()) {
        ORL_ASSERT(IsValidAddressRange(nullptr, nullptr, true));
        ORL_INPUT_CONTRACT(IsValidAddressRange(nullptr, 1, true));
        ORL_OUTPUT_CONTRACT(IsValidAddress(nullptr, true));
    }
}

template <class Thrown, class... Arguments>
void ThrowAndCatch(const Arguments&... inArguments)
{
    try {
        throw Thrown(inArguments...);
    } catch (const ORL::Exception& caught) {
        const Thrown copy = dynamic_cast<const Thrown&>(caught); // host and library must share the type_info
        Touch(copy.what());
    }
}

inline void TouchExceptions()
{
    using namespace ORL;
    ThrowAndCatch<Exception>();
    ThrowAndCatch<exClassNotFound>();
    ThrowAndCatch<eNotADirectoryPath>();
    ThrowAndCatch<eDirectoryNoLongerValid>();
    ThrowAndCatch<eDirectoryNotListed>();
    ThrowAndCatch<StartupException>(kGeneralFailure);
    ThrowAndCatch<NullInterfaceException>();
    ThrowAndCatch<EventFailure>();
    ThrowAndCatch<SuiteCallFailed>();
    Touch(&StartupException::GetResult, &Exception::Initialize, &Exception::Terminate);
}

inline void TouchErrorManager()
{
    using namespace ORL;
    class HostsManager : public TVXErrorManager
    {
    };
    const HostsManager manager;
    const tvxcore::config::ReplacementValue none;
    ThrowAndCatch<TVXException>(tvxcore::config::kErrorLevel_Error, "$$$/a=b", 1ul, 2l, none, none, none, none);
    manager.ThrowError(tvxcore::config::kErrorLevel_Warning, "$$$/a=b", 1, 2, true, none, none, none, none);
    Touch(&TVXErrorManager::ExecuteFunctionWithTopLevelExceptionHandler, &ThrowAfterUnhandledExceptionAlert,
          Win32ErrorCodeToMessage(2), Win32ExceptionCodeToString(0), &ReportStructuredExceptionRecordInformation);
}

inline void TouchLocks()
{
    using namespace ORL;
    const CriticalSection section;
    {
        const CriticalSectionLock lock(section, "a note");
        const CriticalSectionTryLock attempt(section);
        Touch(attempt.IsLocked());
    }
    Touch(&CriticalSection::Lock, &CriticalSection::Unlock, &CriticalSection::TryLock,
          &ORLGetGlobalCriticalSectionForSingletonConstruction);
}

inline void TouchCore()
{
    TouchChecks();
    TouchExceptions();
    TouchErrorManager();
    TouchLocks();
}

} // namespace Consumer
