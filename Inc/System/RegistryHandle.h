// The open key shared by copies of a RegistryKey.
#pragma once

#include <Platform/Registry.h>

namespace ORL {

/// Binds registry keys to a system transaction. The library installs none; a key without one works directly on the
/// registry.
struct RegistryTransactionManager
{
    void* mTransaction = nullptr;
    bool mFallsBack = false; // without a transaction: true uses the registry directly, false fails
};

/// Owns the handle of one key. Not thread-safe: Open and Create replace the handle.
class RegistryHandle
{
public:
    using KeyHandle = Registry::Platform::KeyHandle;

    explicit RegistryHandle(RegistryTransactionManager* inManager = nullptr) noexcept : mManager(inManager) {}
    ~RegistryHandle();
    RegistryHandle(const RegistryHandle&) = delete;
    RegistryHandle& operator=(const RegistryHandle&) = delete;

    /// Returns the handle; null while closed.
    KeyHandle Get() const noexcept { return mKey; }

    /// Returns the view bits of the access that the key was opened with.
    unsigned View() const noexcept { return mView; }

    /// If opening fails, returns its error and leaves the handle unchanged; otherwise returns the error of closing the
    /// previous handle.
    SystemError Open(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess);
    SystemError Create(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess);

    /// Deletes a key below this one with all its descendants, the deepest first.
    SystemError DeleteTree(const unsigned short* inPath);

private:
    SystemError Replace(KeyHandle inKey, unsigned inAccess);
    SystemError DeleteDescendants(const unsigned short* inPath);
    SystemError Close();
    SystemError OpenKey(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey) const;
    SystemError CreateKey(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey) const;
    SystemError DeleteOne(const unsigned short* inPath) const;

    KeyHandle mKey = nullptr;
    unsigned mView = 0;
    RegistryTransactionManager* mManager;
};

} // namespace ORL
