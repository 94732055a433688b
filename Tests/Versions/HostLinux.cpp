#include "Host.h"

#include <dlfcn.h>
#include <fstream>
#include <string>

namespace Versions {

void* LoadModule(const char* inPath)
{
    return ::dlopen(inPath, RTLD_NOW | RTLD_LOCAL);
}

void UnloadModule(void* inModule)
{
    ::dlclose(inModule);
}

void* FindSymbol(void* inModule, const char* inName)
{
    return ::dlsym(inModule, inName);
}

bool IsLoaded(const char* inFileName)
{
    const std::string name = std::string("/") + inFileName;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(name) != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace Versions
