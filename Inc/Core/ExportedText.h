// Definitions of string constants, exported or private.
#pragma once

#include <Core/UntilUnload.h>
#include <ORLConfig.h>
#include <tvxcore/String.h>

namespace ORL {

// Initialises an object before all objects of the library that lack this attribute, whatever file defines them.
#define ORL_BUILT_FIRST __attribute__((init_priority(101)))

// Defines a constant that a header declares as `const UTF16String`. Host threads may use the string during process
// exit, so it is an UntilUnload under the constant's linker symbol. inSymbol is that symbol without the ABI tag that
// the standard library adds to strings.
#define ORL_PRIVATE_TEXT(inName, inSymbol, inText)                                                                     \
  extern UntilUnload<const UTF16String> s_##inName __asm__(inSymbol "B5cxx11E");                                       \
  ORL_BUILT_FIRST UntilUnload<const UTF16String> s_##inName(TVX_UTF16(inText))

// Same as ORL_PRIVATE_TEXT, for a constant that other libraries can access.
#define ORL_EXPORTED_TEXT(inName, inSymbol, inText)                                                                    \
  extern ORL_API UntilUnload<const UTF16String> s_##inName __asm__(inSymbol "B5cxx11E");                               \
  ORL_BUILT_FIRST UntilUnload<const UTF16String> s_##inName(TVX_UTF16(inText))

} // namespace ORL
