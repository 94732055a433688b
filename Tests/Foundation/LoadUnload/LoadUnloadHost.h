// The platform part of the host that loads and unloads the library.
#pragma once

#include <cstddef>

namespace LoadUnload {

/// Loads a library from this program's folder. Returns its handle, or null on failure.
void* Load(const char* inFileName);
bool Unload(void* inLibrary);

/// Returns whether any of our libraries is loaded.
bool IsAnyOfOursLoaded();

/// Returns the address of an exported function by its linker name, or null if it is missing.
void* Find(void* inLibrary, const char* inName);

/// Resources that must not grow from round to round.
struct Footprint
{
    std::size_t mMemory = 0;   // private bytes
    std::size_t mMappings = 0; // memory maps on Linux, modules on Windows
    std::size_t mThreads = 0;
    std::size_t mHandles = 0; // open files on Linux, handles on Windows
};

Footprint Measure();

} // namespace LoadUnload
