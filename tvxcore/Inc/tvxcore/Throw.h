// Functions that throw, for the inline functions of the headers: a host that is compiled with -fno-exceptions cannot
// contain a throw expression. An exception that nothing catches ends the process.
#pragma once

#include <tvxcore/Config.h>

namespace tvxcore {
namespace utility {
namespace Internal {

/// Throws std::bad_alloc.
[[noreturn]] TVXCORE_API void ThrowBadAlloc();

/// Throws std::invalid_argument with that message.
[[noreturn]] TVXCORE_API void ThrowInvalidArgument(const char* inText);

} // namespace Internal
} // namespace utility
} // namespace tvxcore
