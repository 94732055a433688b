#include "LinuxDataModule.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"

#include <cerrno>
#include <limits>

namespace ORL {
namespace Linux {

DataModule::~DataModule()
{
    if (mPages != nullptr) {
        System().mUnmapPages(mPages, mContents.mSize);
    }
}

SystemError DataModule::Read(int inFile)
{
    struct stat status;
    if (System().mFStat(inFile, &status) != 0) {
        return SystemErrorFromErrno(errno);
    }
    if (status.st_size <= 0 || status.st_size > std::numeric_limits<std::int32_t>::max()) {
        return SystemErrors::kErrorBadExeFormat;
    }
    const std::size_t size = static_cast<std::size_t>(status.st_size);
    mPages = System().mMapPages(size);
    if (mPages == nullptr) {
        return SystemErrors::kErrorNotEnoughMemory;
    }
    mContents.mData = static_cast<unsigned char*>(mPages);
    mContents.mSize = size;
    for (std::size_t done = 0; done < size;) {
        const ssize_t count =
            System().mPRead(inFile, static_cast<unsigned char*>(mPages) + done, size - done, static_cast<off_t>(done));
        if (count < 0 && errno != EINTR) {
            return SystemErrorFromErrno(errno);
        }
        if (count == 0) {
            break; // the file has just been truncated; missing bytes stay zero
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return SystemErrors::kNoError;
}

} // namespace Linux
} // namespace ORL
