// Floor: Foundation
// Readable messages for system errors and exceptions, and the alert for an unhandled exception.
#pragma once

#include <ORLConfig.h>
#include <ORLExceptionRecordLinux.h>
#include <tvxcore/String.h>

#include <string>

struct _EXCEPTION_RECORD;

namespace ORL {

/// Returns the system's message for a Windows error number, ending in "\r\n". If there is none, returns "There was an
/// error converting this Win32 error to a message!" without a line ending. On Windows the message is in the user's
/// language. On Linux the message comes from this library's table, in English. Thread-safe. Throws std::bad_alloc.
ORL_API UTF16String Win32ErrorCodeToMessage(unsigned int inError);

/// Returns the name and an explanation of a Windows exception code, such as "EXCEPTION_BREAKPOINT (A breakpoint was
/// encountered.)". Returns "!!! Unknown Exception type !!!" for an unknown code. Thread-safe. Throws
/// std::bad_alloc.
ORL_API UTF16String Win32ExceptionCodeToString(unsigned long inCode);

/// Returns a multi-line report about an exception: its code, whether execution can continue, its address, and for
/// an access violation what was accessed. Every line ends in "\r\n". inRecord must not be null; on Linux
/// ORL::Linux::MakeExceptionRecord fills one from a signal. Thread-safe. Throws std::bad_alloc: do not call it in a
/// signal handler.
ORL_API UTF16String ReportStructuredExceptionRecordInformation(const _EXCEPTION_RECORD* inRecord);

/// Shows an unhandled exception to the user, with the calling thread's name, identifier and module, through
/// tvxcore::debug::DisplayAssert. inWhat is the exception's message in UTF-8 and may be empty. Returns true if the user
/// chose to debug. Despite its name, rethrows nothing: the caller acts on the result. Sets ioIgnore if the user chose
/// to ignore this site for good, and leaves it unchanged otherwise. ioIgnore is not read: the caller checks it before
/// the call. Thread-safe. Throws std::bad_alloc. Exceptions from the host's dialog propagate.
ORL_API bool ThrowAfterUnhandledExceptionAlert(bool& ioIgnore, const std::string& inWhat);

} // namespace ORL
