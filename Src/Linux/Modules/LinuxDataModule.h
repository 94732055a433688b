// Floor: System
// A file that is loaded only for its resources: a Windows module or a compiled resource file.
#pragma once

#include <ORLNativeHandles.h>
#include <Platform/SystemErrors.h>
#include <Resources/ResourceReaders.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {
namespace Linux {

/// Owns a copy of a file's bytes. The file is not mapped, because truncating a mapped file would kill the process.
class DataModule
{
public:
    DataModule() = default;
    ~DataModule();
    DataModule(const DataModule&) = delete;
    DataModule& operator=(const DataModule&) = delete;

    /// Reads all of an open file. Returns 193 for an empty file and for a file of 2 GiB or more, otherwise a system
    /// error number; 0 is success.
    SystemError Read(int inFile);

    Resources::Bytes Contents() const noexcept { return mContents; }

    UTF16String mPath;

private:
    Resources::Bytes mContents;
    void* mPages = nullptr;
};

// The handle is the address with bit 0 set. Bit 0 is clear in every handle that the loader returns.

inline HINSTANCE HandleOf(DataModule* inModule) noexcept
{
    return reinterpret_cast<HINSTANCE>(reinterpret_cast<std::uintptr_t>(inModule) | 1);
}

/// Returns null for a handle of the loader.
inline DataModule* DataModuleOf(HINSTANCE inHandle) noexcept
{
    const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(inHandle);
    return (value & 1) != 0 ? reinterpret_cast<DataModule*>(value & ~std::uintptr_t{1}) : nullptr;
}

} // namespace Linux
} // namespace ORL
