#include "LoadUnloadHost.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fstream>
#include <string>
#include <unistd.h>

namespace LoadUnload {

namespace {

std::size_t CountEntries(const char* inFolder)
{
    std::size_t count = 0;
    DIR* const folder = ::opendir(inFolder);
    while (folder != nullptr && ::readdir(folder) != nullptr) {
        ++count;
    }
    ::closedir(folder);
    return count;
}

std::string OwnFolder()
{
    char path[4096];
    const ssize_t size = ::readlink("/proc/self/exe", path, sizeof(path));
    const std::string own(path, size > 0 ? static_cast<std::size_t>(size) : 0);
    return own.substr(0, own.rfind('/') + 1);
}

} // namespace

void* Load(const char* inFileName)
{
    return ::dlopen((OwnFolder() + inFileName).c_str(), RTLD_NOW | RTLD_LOCAL);
}

bool Unload(void* inLibrary)
{
    return ::dlclose(inLibrary) == 0;
}

bool IsAnyOfOursLoaded()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        for (const char* name : {"libORLFoundation", "libtvxcore", "libtvxmediatypes", "libCRV"}) {
            if (line.find(name) != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

void* Find(void* inLibrary, const char* inName)
{
    return ::dlsym(inLibrary, inName);
}

Footprint Measure()
{
    Footprint footprint;
    std::ifstream statistics("/proc/self/statm");
    std::size_t pages[6] = {};
    for (std::size_t& each : pages) {
        statistics >> each;
    }
    footprint.mMemory = pages[5] * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); // pages of data and stack
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        ++footprint.mMappings;
    }
    footprint.mThreads = CountEntries("/proc/self/task");
    footprint.mHandles = CountEntries("/proc/self/fd");
    return footprint;
}

} // namespace LoadUnload
