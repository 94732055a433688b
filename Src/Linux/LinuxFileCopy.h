// Copying one file, by host paths.
#pragma once

#include "LinuxFile.h"

namespace ORL {
namespace Linux {

/// As CopyFile_Impl. inDisposition is kOpenAlways or kCreateNew; with the latter an existing destination gives 80.
/// inSyncs puts the copy on disk before it is done.
struct CopyWish
{
    std::uint32_t mDisposition = Files::Platform::kOpenAlways;
    bool mSyncs = false;
    Files::Platform::CopyProgress mProgress = nullptr;
    void* mData = nullptr;
};
SystemError CopyHostFile(const HostPath& inSource, const HostPath& inDestination, const CopyWish& inWish);

} // namespace Linux
} // namespace ORL
