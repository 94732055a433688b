// Floor: Platform
// Texts of the system's error numbers.
#pragma once

#include <tvxcore/String.h>

namespace ORL {
namespace FailureReport {
namespace Platform {

/// The system's sentence for one of the home platform's error numbers, in the user's language if the system has it,
/// with its line end "\r\n". Empty if the system has no text for the number. Thread-safe. Throws std::bad_alloc.
UTF16String SystemErrorMessage_Impl(unsigned int inError);

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
