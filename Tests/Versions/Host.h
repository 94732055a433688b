// Loads modules as a host does, without the library.
#pragma once

namespace Versions {

/// Loads a module without exposing its symbols. Libraries in its folder have precedence. Returns null on failure.
void* LoadModule(const char* inPath);

void UnloadModule(void* inModule);

/// Returns null if the module has no such symbol.
void* FindSymbol(void* inModule, const char* inName);

/// Returns whether the process has a library of this file name.
bool IsLoaded(const char* inFileName);

} // namespace Versions
