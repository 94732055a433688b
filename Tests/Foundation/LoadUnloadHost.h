// What the host that loads and unloads the library needs of the system.
#pragma once

#include <cstddef>

namespace LoadUnload {

/// Handle of the loaded library beside this program, null on failure.
void* Load(const char* inFileName);
bool Unload(void* inLibrary);

/// True while any of our libraries is in the process.
bool IsAnyOfOursLoaded();

/// Address of an exported function by its linker name, null when it is missing.
void* Find(void* inLibrary, const char* inName);

/// What must not grow from round to round.
struct Footprint
{
    std::size_t mMemory = 0;   // private bytes
    std::size_t mMappings = 0; // memory maps, or modules
    std::size_t mThreads = 0;
    std::size_t mHandles = 0; // open files, or handles
};

Footprint Measure();

} // namespace LoadUnload
