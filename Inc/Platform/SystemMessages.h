// Floor: Platform
// The system's messages for error numbers.
#pragma once

#include <tvxcore/String.h>

namespace ORL {
namespace FailureReport {
namespace Platform {

/// Returns the system's message for a Windows error number, in the user's language if available, with its line end
/// "\r\n". Returns an empty string if the system has none. Thread-safe. Throws std::bad_alloc.
UTF16String SystemErrorMessage_Impl(unsigned int inError);

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
