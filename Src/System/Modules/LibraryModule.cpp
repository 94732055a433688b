#include <LibraryModule.h>

#include <Immortal.h>
#include <ORLDebug.h>

#include <new>

namespace ORL {

namespace {

using ModulePtr = ObjectPtr<Module, AtomicValue>;

// Empty before any constructor runs, and let go at the unload and no sooner, so that a host's static objects may use
// the module in their constructors and destructors.
Immortal<ModulePtr> sLibraryModule;
Immortal<ModulePtr> sSecondReference;

// A host must not end because there was no memory while this library was loaded.
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
    sSecondReference.mValue = sLibraryModule.mValue;
}

void OnLibraryUnload()
{
    ModulePtr().Swap(sLibraryModule.mValue);
    sSecondReference.mValue = sLibraryModule.mValue;
}

const ModulePtr& GetLibraryModule()
{
    return sLibraryModule.mValue;
}

} // namespace ORL
