// Floor: System
// The functions that the loader calls at load and unload. The loader calls OnUnload after all destructors that the
// program registered while the library was loaded.
#include <ORLResources.h>
#include <System/LibraryModule.h>

namespace ORL {

namespace {

// An object of this library, for its address.
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
