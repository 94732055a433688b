#include "ServicesAtExitHost.h"

#include <cstdlib>
#include <cxxabi.h>

namespace {

bool sIsRegistered = false;

void OnLibrariesDestroyed(void*)
{
    AtExit::WaitForThreadProgress();
}

// Registers with no library handle, because std::atexit would run the function together with the program's own static
// destructors.
void RegisterFirst(int, char**, char**)
{
    sIsRegistered = abi::__cxa_atexit(&OnLibrariesDestroyed, nullptr, nullptr) == 0;
}

// Runs before the first constructor of any library, so the registered function runs after the last destructor.
__attribute__((section(".preinit_array"), used)) void (*const sRegisterFirst)(int, char**, char**) = &RegisterFirst;

} // namespace

void AtExit::RunAfterLibraryDestructors()
{
    if (!sIsRegistered) {
        std::abort();
    }
}
