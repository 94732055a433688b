// Reports of failed checks, and the dialogs that a host installs to show them.
#pragma once

#include <tvxcore/Config.h>

namespace tvxcore {
namespace debug {

/// Returns whether a debugger is attached to this process now.
TVXCORE_API bool IsDebuggerAttached();

/// Reports a failed assertion. Sets ioIgnore if the user chooses to ignore this site for good. Returns true if the
/// caller should break into the debugger. inMessage is UTF-8 and may be empty. Thread-safe.
TVXCORE_API bool BreakAfterAssertDialog(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage,
                                        const char* inFile, long inLine, const char* inFunction);

/// Reports a contract violation. Returns true if the caller should break into the debugger. Thread-safe.
TVXCORE_API bool BreakAfterContractDialog(const char* inExpression, const char* inFile, long inLine);

/// Shows a message to the user. Returns the user's choice: 0 to debug, 2 or 4 to ignore for good what the message
/// reports; any other value, such as 1, to continue. Thread-safe.
TVXCORE_API long DisplayAssert(const char* inTitle, const char* inText);

/// The host's handlers for the reports above. A null member selects the default, which writes the report to standard
/// error, does not block and never ignores a site for good. The default of mDisplay returns 0 if a debugger is
/// attached, else 1. The defaults of the other two return true, and their callers break only if a debugger is attached.
/// The handlers are called on any thread, and concurrently.
struct Dialogs
{
    bool (*mAssert)(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage, const char* inFile,
                    long inLine, const char* inFunction) = nullptr;                         ///< a failed assertion
    bool (*mContract)(const char* inExpression, const char* inFile, long inLine) = nullptr; ///< a contract violation
    long (*mDisplay)(const char* inTitle, const char* inText) = nullptr;                    ///< any other message
};

/// Installs the host's dialogs and returns the previous ones. Thread-safe; a report in progress may still use the
/// previous ones.
TVXCORE_API Dialogs InstallDialogs(const Dialogs& inDialogs);

} // namespace debug
} // namespace tvxcore
