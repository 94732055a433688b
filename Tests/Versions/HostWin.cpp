#include "Host.h"

#include <windows.h>

namespace Versions {

void* LoadModule(const char* inPath)
{
    char path[4096]; // absolute, and with backslashes, because Windows finds no folder in a path with slashes
    const DWORD length = ::GetFullPathNameA(inPath, sizeof(path), path, nullptr);
    return length == 0 || length >= sizeof(path) ? nullptr
                                                 : ::LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void UnloadModule(void* inModule)
{
    ::FreeLibrary(static_cast<HMODULE>(inModule));
}

void* FindSymbol(void* inModule, const char* inName)
{
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(inModule), inName));
}

bool IsLoaded(const char* inFileName)
{
    return ::GetModuleHandleA(inFileName) != nullptr;
}

} // namespace Versions
