// Floor: Foundation
// Readable texts of system errors and exceptions, and the alert for an unhandled exception.
#pragma once

#include <ORLConfig.h>
#include <ORLExceptionRecordLinux.h>
#include <tvxcore/String.h>

#include <string>

struct _EXCEPTION_RECORD;

namespace ORL {

/// Returns the system's sentence for a system error number of the home platform, ended by the system's line end "\r\n".
/// Returns "There was an error converting this Win32 error to a message!" without a line end if the system has none.
/// On Windows the sentence is in the user's language. On Linux it comes from a table of this library, in English.
/// Thread-safe. Throws std::bad_alloc.
ORL_API UTF16String Win32ErrorCodeToMessage(unsigned int inError);

/// Returns the name and an explanation of an exception code of the home platform, such as
/// "EXCEPTION_BREAKPOINT (A breakpoint was encountered.)". Returns "!!! Unknown Exception type !!!" for a code without a
/// text. Thread-safe. Throws std::bad_alloc.
ORL_API UTF16String Win32ExceptionCodeToString(unsigned long inCode);

/// Returns a report of several lines about an exception: its code, whether execution could go on, its address, and for
/// an access violation what was accessed. Every line ends in "\r\n". inRecord must not be null; on Linux
/// ORL::Linux::MakeExceptionRecord fills one from a signal. Thread-safe. Throws std::bad_alloc: do not call it in a
/// signal handler.
ORL_API UTF16String ReportStructuredExceptionRecordInformation(const _EXCEPTION_RECORD* inRecord);

/// Shows an unhandled exception to the user, with the calling thread's name, identifier and module, through
/// tvxcore::debug::DisplayAssert. inWhat is the exception's text, UTF-8, and may be empty.
/// True: the user asked to debug, and the caller does what follows; nothing is thrown here for it. ioIgnore is set when
/// the user never wants to hear of this site again, and left alone otherwise. It is not read: a caller whose flag is
/// set does not call.
/// Safe from any thread. Throws std::bad_alloc, and what the host's dialog throws.
ORL_API bool ThrowAfterUnhandledExceptionAlert(bool& ioIgnore, const std::string& inWhat);

} // namespace ORL
