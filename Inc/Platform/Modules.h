// Floor: Platform
// What modules need of the system. Names and types of resources are pointers to text, or numbers in the pointer's
// value.
#pragma once

#include <ORLNativeHandles.h>
#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace Modules {

/// What a platform keeps beside a module's handle to find its resources.
class ResourceStore;

namespace Platform {

/// A found resource.
using Resource = const void*;

/// Loads a module. Returns 0 and its handle, or the error: 126 for one that is missing or needs a missing one, 193 for
/// a file that is no module, 5 for one that may not be read. FreeModule_Impl gives the handle back.
SystemError LoadModule_Impl(const UTF16String& inPath, HINSTANCE& outModule);
void FreeModule_Impl(HINSTANCE inModule);

/// Fills the buffer with the path of the module's file, cut to its size, the terminator included. An unknown module
/// leaves the buffer as it is.
void GetModuleFileName_Impl(HINSTANCE inModule, unsigned short* outBuffer, std::size_t inSize);

/// Null if the module exports no such name.
int (*GetProcAddress_Impl(HINSTANCE inModule, const char* inName))();

/// Makes what the lookups below need beside the handle, which may be null. Throws std::bad_alloc.
ResourceStore* OpenResources_Impl(HINSTANCE inModule);
void CloseResources_Impl(ResourceStore* inStore);

/// A module as the lookups take it.
struct Source
{
    HINSTANCE mModule;
    const ResourceStore* mStore;
};

/// Finds a resource in a language: that one, its neutral sublanguage, then the neutral language. For a language whose
/// primary part is 0 the user's language, American English and the first language there is come next. Null if none.
Resource FindResourceEx_Impl(const Source& inSource, const unsigned short* inType, const unsigned short* inName,
                             unsigned short inLanguage);

/// Finds a resource in the language of the platform's own choice. Null if none.
Resource FindResource_Impl(const Source& inSource, const unsigned short* inName, const unsigned short* inType);

/// The data of a found resource, which lives as long as the module, and its size in bytes. Null, with outSize
/// untouched, if it cannot be loaded.
void* LoadResource_Impl(const Source& inSource, Resource inResource, int& outSize);

/// Calls inFound with the first name of a type, if there is one.
void EnumFirstResourceName_Impl(const Source& inSource, const unsigned short* inType,
                                void (*inFound)(void* inContext, const unsigned short* inName), void* inContext);

/// The cursor, in the language of the platform's own choice; null if there is none. It lives as long as the source.
void* LoadCursor_Impl(const Source& inSource, unsigned short inID);

/// Makes a menu of a template of inSize bytes; null if it cannot be read.
HMENU LoadMenuIndirect_Impl(const void* inTemplate, std::size_t inSize);

} // namespace Platform
} // namespace Modules
} // namespace ORL
