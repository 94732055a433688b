#include "ServicesAtExitHost.h"

#include <cstdlib>
#include <cxxabi.h>

namespace {

bool sIsRegistered = false;

void GoOn(void*)
{
    AtExit::LetEachThreadGoOn();
}

// For no library at all: what std::atexit registers is called when the program's own static objects are destroyed.
void RegisterFirst(int, char**, char**)
{
    sIsRegistered = abi::__cxa_atexit(&GoOn, nullptr, nullptr) == 0;
}

// Called before the first constructor of any library, so what it registers is called after the last destructor.
__attribute__((section(".preinit_array"), used)) void (*const sRegisterFirst)(int, char**, char**) = &RegisterFirst;

} // namespace

void AtExit::GoOnAfterEveryLibrary()
{
    if (!sIsRegistered) {
        std::abort();
    }
}
