// Floor: System
// The moments of load and unload. The loader runs the second one after every destructor that a program registered while
// the library was there.
#include <LibraryModule.h>
#include <ORLResources.h>

namespace ORL {

namespace {

// An address of this library's own.
const char sInside = 0;

__attribute__((constructor)) void OnLoad()
{
    OnLibraryLoad(Resources::Linux::ModuleOfAddress(&sInside));
}

__attribute__((destructor)) void OnUnload()
{
    OnLibraryUnload();
}

} // namespace

} // namespace ORL
