#include <tvxcore/Unload.h>

#include <dlfcn.h>

namespace tvxcore {
namespace utility {

// A search in the program's scope covers the libraries loaded with it, and those loaded later with global visibility.
bool BelongsToProgram(const void* inExported) noexcept
{
    Dl_info exported;
    if (::dladdr(inExported, &exported) == 0 || exported.dli_sname == nullptr) {
        return true;
    }
    void* const program = ::dlopen(nullptr, RTLD_LAZY);
    const bool isInItsScope = program == nullptr || ::dlsym(program, exported.dli_sname) == exported.dli_saddr;
    if (program != nullptr) {
        ::dlclose(program);
    }
    return isInItsScope;
}

bool AreOtherThreadsStopped() noexcept
{
    return false;
}

} // namespace utility
} // namespace tvxcore
