// What a failed check asks the user, and who answers.
#pragma once

#include <tvxcore/Config.h>

namespace tvxcore {
namespace debug {

/// True when a debugger is attached to this process now.
TVXCORE_API bool IsDebuggerAttached();

/// Reports a failed assertion. Sets ioIgnore when the user never wants to hear of this site again.
/// True asks the caller to break into the debugger. inMessage is UTF-8 and may be empty.
TVXCORE_API bool BreakAfterAssertDialog(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage,
                                        const char* inFile, long inLine, const char* inFunction);

/// Reports a broken contract. True asks the caller to break into the debugger.
TVXCORE_API bool BreakAfterContractDialog(const char* inExpression, const char* inFile, long inLine);

/// Shows free text to the user and gives the choice: 0 asks to debug, 2 and 4 ask never to show this site again.
TVXCORE_API long DisplayAssert(const char* inTitle, const char* inText);

/// Who answers the reports above. A null member stands for the default: the report goes to standard error, nobody is
/// waited for, nothing is ignored for good, and a break is asked for only to where a debugger is: the choice of
/// DisplayAssert is then 0, else 1, and the breaks that the other two ask for are left out by their callers.
/// A function may be called on any thread, and on two at once.
struct Dialogs
{
    bool (*mAssert)(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage, const char* inFile,
                    long inLine, const char* inFunction) = nullptr;
    bool (*mContract)(const char* inExpression, const char* inFile, long inLine) = nullptr;
    long (*mDisplay)(const char* inTitle, const char* inText) = nullptr;
};

/// Installs the host's answers and gives back the earlier ones. Safe from any thread; a report already under way
/// may still reach the earlier ones.
TVXCORE_API Dialogs InstallDialogs(const Dialogs& inDialogs);

} // namespace debug
} // namespace tvxcore
