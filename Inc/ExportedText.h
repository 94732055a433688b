// Floor: Core
// Constant texts that the library exports.
#pragma once

#include <ORLConfig.h>
#include <UntilUnload.h>
#include <tvxcore/String.h>

namespace ORL {

// Built before every other object of the library that does not ask for the same, whatever source it stands in.
#define ORL_BUILT_FIRST __attribute__((init_priority(101)))

// Defines a constant that a header declares as `const UTF16String`. Its text is in use wherever a host's threads are at the end
// of the process, so it is an UntilUnload, under the linker's name of the constant: inSymbol, in which the standard library tags
// what is a string.
#define ORL_PRIVATE_TEXT(inName, inSymbol, inText)                                                                    \
    extern UntilUnload<const UTF16String> s_##inName __asm__(inSymbol "B5cxx11E");                                    \
    ORL_BUILT_FIRST UntilUnload<const UTF16String> s_##inName(TVX_UTF16(inText))

// The same for one that other libraries can reach.
#define ORL_EXPORTED_TEXT(inName, inSymbol, inText)                                                                   \
    extern ORL_API UntilUnload<const UTF16String> s_##inName __asm__(inSymbol "B5cxx11E");                            \
    ORL_BUILT_FIRST UntilUnload<const UTF16String> s_##inName(TVX_UTF16(inText))

} // namespace ORL
