#include "IngestSystem.h"

#include <ORLHostPath.h>

#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace orl {

namespace {

int DescriptorOf(ORL::File& ioFile)
{
    return *static_cast<const int*>(ioFile.GetPlatformFileHandle());
}

} // namespace

bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime)
{
    constexpr long long kSecondsTo1970 = 11644473600;
    const struct timespec time
    {
        static_cast<std::time_t>(static_cast<long long>(inTime / 10000000) - kSecondsTo1970),
            static_cast<long>(inTime % 10000000 * 100)
    };
    const struct timespec times[] = {time, time};
    return ::futimens(DescriptorOf(ioFile), times) == 0;
}

bool FlushFile(ORL::File& ioFile)
{
    return ::fdatasync(DescriptorOf(ioFile)) == 0;
}

// One call for the whole volume costs as much as one for a single file.
bool SettleFile(ORL::File&)
{
    return true;
}

bool FlushVolume(const UTF16String& inFolder)
{
    std::string path;
    if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(inFolder, path))) {
        return false;
    }
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isDone = folder >= 0 && ::syncfs(folder) == 0;
    if (folder >= 0) {
        ::close(folder);
    }
    return isDone;
}

} // namespace orl
