#include "IngestSystem.h"

#include <ORLHostPath.h>

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <set>
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

bool SettleFile(ORL::File&)
{
    return true;
}

namespace {

// From so many files on, one call for the whole volume costs less, although it waits for what others write too.
constexpr std::size_t kManyFiles = 64;

using Flush = int (*)(int);

bool FlushPath(const std::string& inPath, Flush inFlush)
{
    const int file = ::open(inPath.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isDone = file >= 0 && inFlush(file) == 0;
    if (file >= 0) {
        ::close(file);
    }
    return isDone;
}

std::string FolderOf(const std::string& inPath)
{
    return inPath.substr(0, inPath.find_last_of('/'));
}

} // namespace

bool FlushGroup(const UTF16String& inFolder, const std::vector<UTF16String>& inFiles)
{
    std::string top;
    if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(inFolder, top))) {
        return false;
    }
    if (inFiles.size() >= kManyFiles) {
        return FlushPath(top, &::syncfs);
    }
    std::set<std::string> folders{top};
    for (const UTF16String& file : inFiles) {
        std::string path;
        if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(file, path)) || !FlushPath(path, &::fsync)) {
            return false;
        }
        for (path = FolderOf(path); path.size() > top.size(); path = FolderOf(path)) {
            folders.insert(path);
        }
    }
    return std::all_of(folders.begin(), folders.end(),
                       [](const std::string& inPath) { return FlushPath(inPath, &::fsync); });
}

} // namespace orl
