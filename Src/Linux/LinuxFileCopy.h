// Copying one file, by host paths.
#pragma once

#include "LinuxFile.h"

namespace ORL {
namespace Linux {

/// As CopyFile_Impl. mDisposition is kOpenAlways or kCreateNew; with the latter an existing destination gives 80. With
/// mStandsIn the copy takes the place of the source: it is put on disk before it is done, and has the source's permissions
/// whatever the mask of the process is.
struct CopyWish
{
    std::uint32_t mDisposition = Files::Platform::kOpenAlways;
    bool mStandsIn = false;
    Files::Platform::CopyProgress mProgress = nullptr;
    void* mData = nullptr;
};
SystemError CopyHostFile(const HostPath& inSource, const HostPath& inDestination, const CopyWish& inWish);

} // namespace Linux
} // namespace ORL
