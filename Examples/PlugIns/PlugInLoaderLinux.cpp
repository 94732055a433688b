#include "PlugInLoader.h"

#include <dlfcn.h>
#include <filesystem>

namespace {

// Looks for a bare name in this program's folder, as Windows does.
std::string PlugInPath(const std::string& inName)
{
    return inName.find('/') != std::string::npos
               ? inName
               : (std::filesystem::read_symlink("/proc/self/exe").parent_path() / inName).string();
}

std::string WithEnding(const std::string& inName)
{
    const std::string ending = ".so";
    const bool hasIt =
        inName.size() > ending.size() && inName.compare(inName.size() - ending.size(), ending.size(), ending) == 0;
    return hasIt ? inName : inName + ending;
}

[[noreturn]] void Fail()
{
    throw std::runtime_error(::dlerror());
}

} // namespace

RegisterEffectsFunction* LoadPlugIn(const std::string& inName)
{
    void* const module = ::dlopen(PlugInPath(WithEnding(inName)).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        Fail();
    }
    void* const function = ::dlsym(module, kRegisterEffects);
    if (function == nullptr) {
        Fail();
    }
    return reinterpret_cast<RegisterEffectsFunction*>(function);
}
