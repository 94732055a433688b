// Floor: Core
// Converts raised errors (level, package, identifier) to exceptions and trace lines.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <tvxcore/ErrorManager.h>

#include <cstdint>

namespace ORL {

/// An error raised through tvxcore::config::ThrowError. Allocates nothing. Not thread-safe: see what().
class ORL_API TVXException : public Exception
{
public:
    /// Stores the addresses of inZString ("$$$/" key "=" default text) and the four values, which must outlive the
    /// exception and its copies.
    TVXException(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                 const tvxcore::config::ReplacementValue& inFirst, const tvxcore::config::ReplacementValue& inSecond,
                 const tvxcore::config::ReplacementValue& inThird, const tvxcore::config::ReplacementValue& inFourth);
    ~TVXException() override;

    /// Returns the default text of the ZString in quotes, then the three numbers:
    ///   "An input contract violation has occurred!" [ID 25, Package 105, Level 0]
    /// A fixed message replaces a ZString without a default text, or with 200 characters or more. Parameters in the
    /// text are not substituted. Each call rebuilds the message in the exception's buffer, so two threads must not call
    /// it on one object at the same time.
    const char* what() const noexcept override;

private:
    tvxcore::config::ErrorLevel mLevel;
    const char* mZString;
    std::uint32_t mPackage;
    std::int32_t mErrorID;
    [[maybe_unused]] const tvxcore::config::ReplacementValue* mValues[4]; // unused, but part of the record's layout
    mutable char mMessage[256];
};

/// The error manager for hosts: it throws errors as TVXException and writes warnings to the trace.
///
/// Owner:    the host creates one and installs it with tvxcore::config::InstallErrorManager; the library creates none.
/// Threads:  thread-safe.
/// Failure:  ThrowError throws TVXException for errors, and never for warnings.
class ORL_API TVXErrorManager : public tvxcore::config::ErrorManager
{
public:
    TVXErrorManager();
    ~TVXErrorManager() override;

    /// Level 1 is a warning: it is traced under "ORLFoundation::TVXErrorManager" at level 1, and the call returns.
    /// At every other level throws TVXException.
    void ThrowError(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                    bool, const tvxcore::config::ReplacementValue& inFirst,
                    const tvxcore::config::ReplacementValue& inSecond, const tvxcore::config::ReplacementValue& inThird,
                    const tvxcore::config::ReplacementValue& inFourth) const override;

    /// Runs the function and returns its result. Exceptions do not propagate: the user is alerted, and the result is 1
    /// if the user chose to debug (after a breakpoint trap if a debugger is attached), else 0. The function may return
    /// the same values. If the user chooses to ignore the alert for good, it is not shown again in this process; this
    /// choice is stored once for all std::exceptions and once for all other exceptions. An empty function is treated as
    /// if it threw boost::bad_function_call.
    long ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction) override;
};

} // namespace ORL
