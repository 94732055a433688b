// Floor: Core
// The bridge from raised errors (level, package, identifier) to exceptions and trace lines.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <tvxcore/ErrorManager.h>

#include <cstdint>

namespace ORL {

/// An error that was raised through tvxcore::config::ThrowError. It allocates nothing.
class ORL_API TVXException : public Exception
{
public:
    /// inZString ("$$$/" key "=" default text) and the four values must outlive the exception and its copies: it keeps
    /// their addresses.
    TVXException(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                 const tvxcore::config::ReplacementValue& inFirst, const tvxcore::config::ReplacementValue& inSecond,
                 const tvxcore::config::ReplacementValue& inThird, const tvxcore::config::ReplacementValue& inFourth);
    ~TVXException() override;

    /// The default text of the ZString in quotes, then the three numbers:
    ///   "An input contract violation has occurred!" [ID 25, Package 105, Level 0]
    /// A ZString without a text, or one of 200 characters and more, shows a fixed text instead. Parameters of the text
    /// are shown as they stand. The message is built anew in the exception's own buffer on each call, so two threads
    /// must not ask one object at once.
    const char* what() const noexcept override;

private:
    tvxcore::config::ErrorLevel mLevel;
    const char* mZString;
    std::uint32_t mPackage;
    std::int32_t mErrorID;
    [[maybe_unused]] const tvxcore::config::ReplacementValue* mValues[4]; // part of the record
    mutable char mMessage[256];
};

/// The error manager for hosts: errors leave as TVXException, warnings become a line of the trace. A host makes one and
/// installs it with tvxcore::config::InstallErrorManager; the library makes none. Safe from any thread.
class ORL_API TVXErrorManager : public tvxcore::config::ErrorManager
{
public:
    TVXErrorManager();
    ~TVXErrorManager() override;

    /// Level 1 is a warning: it is traced under "ORLFoundation::TVXErrorManager" at level 1, and swallowed. Every other
    /// level throws TVXException.
    void ThrowError(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                    bool, const tvxcore::config::ReplacementValue& inFirst,
                    const tvxcore::config::ReplacementValue& inSecond, const tvxcore::config::ReplacementValue& inThird,
                    const tvxcore::config::ReplacementValue& inFourth) const override;

    /// Runs the function and gives its answer. An exception does not leave: the user is alerted, and the answer is 1 if
    /// the user asked to debug (after a breakpoint trap where a debugger is attached), else 0, as of a function that
    /// answered 0. A user who never wants to hear of it again is not asked again, for as long as the process lives:
    /// once for all std::exceptions, once for all other exceptions. An empty function counts as one that threw
    /// boost::bad_function_call.
    long ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction) override;
};

} // namespace ORL
