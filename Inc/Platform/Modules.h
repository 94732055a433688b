// Floor: Platform
// The system functions for modules. Names and types of resources are pointers to strings, or numbers in the pointer's
// value.
#pragma once

#include <ORLNativeHandles.h>
#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace Modules {

/// A platform's data for finding a module's resources, in addition to its handle.
class ResourceStore;

namespace Platform {

/// A found resource.
using Resource = const void*;

/// Loads a module. Returns 0 and its handle, or the error: 126 if the module or one that it depends on is missing, 193
/// for a file that is not a module, 5 for one that is not readable. FreeModule_Impl releases the handle.
SystemError LoadModule_Impl(const UTF16String& inPath, HINSTANCE& outModule);
void FreeModule_Impl(HINSTANCE inModule);

/// Stores the path of the module's file, truncated to inSize units, terminator included. Leaves the buffer unchanged
/// for an unknown module.
void GetModuleFileName_Impl(HINSTANCE inModule, unsigned short* outBuffer, std::size_t inSize);

/// Returns the exported function of that name, or null.
int (*GetProcAddress_Impl(HINSTANCE inModule, const char* inName))();

/// Creates the data that the lookups below need besides the handle; null if they need none. Throws std::bad_alloc.
ResourceStore* OpenResources_Impl(HINSTANCE inModule);
void CloseResources_Impl(ResourceStore* inStore);

/// The module argument of the lookups.
struct Source
{
    HINSTANCE mModule;
    const ResourceStore* mStore;
};

/// Finds a resource in a language, otherwise in its neutral sublanguage, otherwise in the neutral language. If the
/// primary language is 0, then tries the user's language, American English and the first language that exists. Returns
/// null if there is no such resource.
Resource FindResourceEx_Impl(const Source& inSource, const unsigned short* inType, const unsigned short* inName,
                             unsigned short inLanguage);

/// Finds a resource in the language that the platform selects. Returns null if there is no such resource.
Resource FindResource_Impl(const Source& inSource, const unsigned short* inName, const unsigned short* inType);

/// Returns the data of a found resource, which lives as long as the module, and stores its size in bytes. Returns null,
/// with outSize untouched, if the data cannot be loaded.
void* LoadResource_Impl(const Source& inSource, Resource inResource, int& outSize);

/// Calls inFound with the first resource name of a type, if there is one.
void EnumFirstResourceName_Impl(const Source& inSource, const unsigned short* inType,
                                void (*inFound)(void* inContext, const unsigned short* inName), void* inContext);

/// Returns the cursor in the language that the platform selects, valid as long as the source; null if there is none.
void* LoadCursor_Impl(const Source& inSource, unsigned short inID);

/// Creates a bitmap, which the caller deletes, from the bitmap resource with that number in the language that the
/// platform selects. Returns null if the resource does not exist or cannot be read.
HBITMAP LoadBitmap_Impl(const Source& inSource, unsigned short inID);

/// Creates a menu from a template of inSize bytes. Returns null if the template cannot be read.
HMENU LoadMenuIndirect_Impl(const void* inTemplate, std::size_t inSize);

} // namespace Platform
} // namespace Modules
} // namespace ORL
