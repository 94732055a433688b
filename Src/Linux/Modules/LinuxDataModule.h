// Floor: System
// A file that is loaded for its resources alone: a Windows module, or a compiled resource file.
#pragma once

#include <ORLNativeHandles.h>
#include <Platform/SystemErrors.h>
#include <Resources/ResourceReaders.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {
namespace Linux {

/// The bytes of a file in memory of their own: a mapped file that somebody cuts short would kill the process.
class DataModule
{
public:
    DataModule() = default;
    ~DataModule();
    DataModule(const DataModule&) = delete;
    DataModule& operator=(const DataModule&) = delete;

    /// Reads an open file whole. Returns the system's error; 193 for a file of more than 2 GiB.
    SystemError Read(int inFile);

    Resources::Bytes Contents() const noexcept { return mContents; }

    UTF16String mPath;

private:
    Resources::Bytes mContents;
    void* mPages = nullptr;
};

// Its handle is its address, marked so that no handle of the loader's is like it.

inline HINSTANCE HandleOf(DataModule* inModule) noexcept
{
    return reinterpret_cast<HINSTANCE>(reinterpret_cast<std::uintptr_t>(inModule) | 1);
}

/// Null for a handle of the loader's.
inline DataModule* DataModuleOf(HINSTANCE inHandle) noexcept
{
    const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(inHandle);
    return (value & 1) != 0 ? reinterpret_cast<DataModule*>(value & ~std::uintptr_t{1}) : nullptr;
}

} // namespace Linux
} // namespace ORL
