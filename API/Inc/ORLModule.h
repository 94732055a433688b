// Floor: System
// Executable modules and their resources.
//
//   ORL::ObjectPtr<ORL::Module> plugIn;
//   if (ORL::ResultSucceeded(ORL::Module::Load(path, plugIn))) {
//       const UTF16String title = ORL::LoadStringW(*plugIn, 100);
//   }
//
// On Linux a module is a shared object. The CMake function orl_target_resources embeds resources in the module, and the
// library reads them from the loaded image. Load also accepts a Windows DLL and a compiled resource file (.res),
// but only as data: their resources are available, none of their code runs, and GetProcAddress returns null.
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

/// An executable module that Load loaded or Create wrapped.
///
/// Owner:    the last ObjectPtr unloads a module that Load loaded. The caller owns a module that Create wrapped.
///           Data and cursors of a module are invalid once it is unloaded, so no thread may use them after that.
/// Threads:  lookups are thread-safe and acquire no lock, except that on Linux LoadCursorW acquires one. GetPath is not
///           thread-safe until its first call has returned, because that call fills a cache.
/// Failure:  lookups return null, most of them after an assertion; see ResourceCollection.
class ORL_API Module : public ResourceCollection
{
public:
    /// Loads a module by library path. A name without a folder is looked up in the system's search path; on Linux the
    /// program's folder is searched first. Fires an input contract for an empty path. Returns kSuccess and replaces
    /// outModule. On failure keeps outModule and returns kAccessDenied if the file is not readable, kGeneralFailure if
    /// the module or one that it depends on is missing, or if it is no module for this machine. Throws std::bad_alloc.
    static int Load(const UTF16String& inModulePath, ObjectPtr<Module, AtomicValue>& outModule);

    /// Wraps a module that the caller owns and that must outlive the wrapper. Null denotes the program itself. Always
    /// returns kSuccess. Throws std::bad_alloc.
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

    HINSTANCE GetNativeModule() const; ///< returns the system's handle of the module

    /// Copies the path of the module's file, truncated to 259 units. The first call queries the system. Throws
    /// std::bad_alloc.
    void GetPath(UTF16String& outPath) const;

    /// Returns the address of an exported function by its linker name, or null. Fires an input contract for an empty
    /// name, and an assertion for a null module.
    int (*GetProcAddress(const std::string& inProcName) const)();

private:
    Module(HINSTANCE inModule, bool inOwnsModule);

    static void Wrap(HINSTANCE inModule, bool inOwnsModule, ObjectPtr<Module, AtomicValue>& outModule);

    HINSTANCE mNativeModule;
    bool mOwnsModule;
    mutable UTF16String mPath;
    Modules::ResourceStore* mResources; // the resources found in the module; null on Windows
};

/// Returns this library's own module. The pointer is empty before the library is loaded and after it is unloaded.
ORL_API const ObjectPtr<Module, AtomicValue>& GetLibraryModule();

/// Get and set the module that contains the host's strings. The pointer is empty until it is set. Not thread-safe: the
/// host calls SetResourceModule at start-up, before other threads use the module.
ORL_API const ObjectPtr<Module, AtomicValue>& GetResourceModule();
ORL_API void SetResourceModule(const ObjectPtr<Module, AtomicValue>& inModule);

/// Returns the resource module as a collection. The module must be set: otherwise ObjectPtr's assertion fires, and
/// the returned reference is invalid.
ORL_API const ResourceCollection& GetResourceCollection();

} // namespace ORL
