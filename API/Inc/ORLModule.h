// Floor: System
// Executable modules and their resources.
//
//   ORL::ObjectPtr<ORL::Module> plugIn;
//   if (ORL::ResultSucceeded(ORL::Module::Load(path, plugIn))) {
//       const UTF16String title = ORL::LoadStringW(*plugIn, 100);
//   }
//
// Linux: a module is a shared object. Its resources are those that the CMake function orl_target_resources put into it;
// they are read where the loader has mapped them. A Windows DLL and a compiled resource file (.res) load as data: their
// resources are there, no code of theirs runs, and GetProcAddress returns null.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>
#include <ORLNativeHandles.h>
#include <ORLOSImageHandle.h>
#include <ORLObjectPtr.h>
#include <ORLResourceCollection.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {

namespace Modules {
class ResourceStore;
}

/// A loaded or attached executable module.
///
/// Lookups are safe from any thread and take no lock. GetPath is not: its first call writes a cache, so callers that
/// share a module across threads call it once beforehand. A host that unloads a module while another thread reads its
/// resources has a defect.
class ORL_API Module : public ResourceCollection
{
public:
    /// Loads a module by library path; a bare name is searched as the system searches. The module is unloaded with its
    /// last ObjectPtr. Fires the input contract for an empty path. Returns kSuccess, with outModule set and what it
    /// held before released. On failure outModule is untouched: kAccessDenied if the file may not be read,
    /// kGeneralFailure if it is missing, needs a module that is missing, or is no module of this machine. Throws
    /// std::bad_alloc.
    static int Load(const UTF16String& inModulePath, ObjectPtr<Module, AtomicValue>& outModule);

    /// Wraps a module that stays the caller's and must outlive the wrapper. Null stands for the program itself.
    /// Always returns kSuccess. Throws std::bad_alloc.
    static int Create(HINSTANCE inModule, ObjectPtr<Module, AtomicValue>& outModule);

    /// Unloads a module that Load loaded.
    ~Module() override;

    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    void* FindLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                int& outSize) const override;
    void* FindNonLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                   int& outSize) const override;
    void* LoadResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const override;
    void* LoadResource(short inID, const UTF16String& inType, int& outSize) const override;
    void* LoadFirstResourceOfType(const unsigned short* inType, int& outSize) const override;
    void ReleaseResource(void* inData) const override;
    OSImageHandle LoadBitmapW(short inID, bool inLocalized) override;
    OSImageHandle LoadBitmapFromFile(UTF16String inPath, bool) override;
    OSImageHandle LoadBitmapWTL(short inID, bool inLocalized) override;
    void* LoadCursorW(short inID) const override;
    HMENU LoadMenuW(short inID) const override;

    HINSTANCE GetNativeModule() const;

    /// Copies the module's file path, cut after 259 units. Asks the system once in the module's life.
    void GetPath(UTF16String& outPath) const;

    /// The address of an exported function by its linker name, null if there is none. Fires the input contract for an
    /// empty name, and an assertion for a null module.
    int (*GetProcAddress(const std::string& inProcName) const)();

private:
    Module(HINSTANCE inModule, bool inOwnsModule);

    static void Wrap(HINSTANCE inModule, bool inOwnsModule, ObjectPtr<Module, AtomicValue>& outModule);

    HINSTANCE mNativeModule;
    bool mOwnsModule;
    mutable UTF16String mPath;
    Modules::ResourceStore* mResources; // what the platform keeps beside the handle; null at home
};

/// This library's own module, with the resources that came with it. Empty before the library is loaded and after it is
/// unloaded.
ORL_API const ObjectPtr<Module, AtomicValue>& GetLibraryModule();

/// The module that a host has chosen for its texts; empty until it does. Not guarded: SetResourceModule belongs to the
/// host's start, before other threads use the module.
ORL_API const ObjectPtr<Module, AtomicValue>& GetResourceModule();
ORL_API void SetResourceModule(const ObjectPtr<Module, AtomicValue>& inModule);

/// The resource module as a collection. Fires the assertion of ObjectPtr while none is set; there is then nothing that
/// the reference could stand for.
ORL_API const ResourceCollection& GetResourceCollection();

} // namespace ORL
