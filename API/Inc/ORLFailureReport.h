// Floor: Foundation
// What a user is told of a failure that nobody handled.
#pragma once

#include <ORLConfig.h>

#include <string>

namespace ORL {

/// Shows an unhandled exception to the user, with the calling thread's name, identifier and module, through
/// tvxcore::debug::DisplayAssert. inWhat is the exception's text, UTF-8, and may be empty.
/// True: the user asked to debug, and the caller does what follows; nothing is thrown here for it. ioIgnore is set when
/// the user never wants to hear of this site again, and left alone otherwise. It is not read: a caller whose flag is
/// set does not call.
/// Safe from any thread. Throws std::bad_alloc, and what the host's dialog throws.
ORL_API bool ThrowAfterUnhandledExceptionAlert(bool& ioIgnore, const std::string& inWhat);

} // namespace ORL
