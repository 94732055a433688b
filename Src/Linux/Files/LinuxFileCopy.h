// Copies one file, by host paths.
#pragma once

#include "LinuxFile.h"

namespace ORL {
namespace Linux {

/// Options of CopyHostFile, which otherwise copies like CopyFile_Impl. mDisposition is kOpenAlways or kCreateNew; with
/// kCreateNew an existing destination returns 80. A caller that will delete the source sets mReplacesSource: the copy
/// is then synced before CopyHostFile returns, and gets the source's permissions regardless of the umask.
struct CopyOptions
{
    std::uint32_t mDisposition = Files::Platform::kOpenAlways;
    bool mReplacesSource = false;
    Files::Platform::CopyProgress mProgress = nullptr;
    void* mData = nullptr;
};
SystemError CopyHostFile(const HostPath& inSource, const HostPath& inDestination, const CopyOptions& inOptions);

} // namespace Linux
} // namespace ORL
