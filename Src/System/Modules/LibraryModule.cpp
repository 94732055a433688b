#include <System/LibraryModule.h>

#include <Core/Immortal.h>
#include <ORLDebug.h>

#include <new>

namespace ORL {

namespace {

using ModulePtr = ObjectPtr<Module, AtomicValue>;

// Constant-initialised, and released only on unload, so that a host's static objects may use the module in their
// constructors and destructors.
Immortal<ModulePtr> sLibraryModule;
Immortal<ModulePtr> sKeepAliveReference;

// Memory exhaustion while this library loads must not terminate the host.
int CreateModule(HINSTANCE inModule)
{
    try {
        return Module::Create(inModule, sLibraryModule.mValue);
    } catch (const std::bad_alloc&) {
        return kGeneralFailure;
    }
}

} // namespace

void OnLibraryLoad(HINSTANCE inModule)
{
    const int moduleLoaded = CreateModule(inModule);
    ORL_ASSERT_AT(ORL::ResultSucceeded(moduleLoaded), "WinDLLMain", 51, "DllMain");
    sKeepAliveReference.mValue = sLibraryModule.mValue;
}

void OnLibraryUnload()
{
    ModulePtr().Swap(sLibraryModule.mValue);
    sKeepAliveReference.mValue = sLibraryModule.mValue;
}

const ModulePtr& GetLibraryModule()
{
    return sLibraryModule.mValue;
}

} // namespace ORL
