#include "IngestSystem.h"
#include "LinuxIngestCalls.h"

#include <ORLHostPath.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace orl {

IngestCalls sIngestCalls = {
    [](const char* inPath, int inFlags) { return ::open(inPath, inFlags); },
    [](DIR* inFolder) { return ::readdir(inFolder); },
    [](int inFile, const struct timespec* inTimes) { return ::futimens(inFile, inTimes); },
    [](int inFile) { return ::fdatasync(inFile); },
    [](int inFile) { return ::fsync(inFile); },
    [](int inFile) { return ::syncfs(inFile); },
};

namespace {

int DescriptorOf(ORL::File& ioFile)
{
    return *static_cast<const int*>(ioFile.GetPlatformFileHandle());
}

bool IsItselfOrAbove(const char* inName)
{
    return std::strcmp(inName, ".") == 0 || std::strcmp(inName, "..") == 0;
}

// An end and a failure look alike but for errno.
bool ReadEntries(DIR* inFolder, const std::string& inStem, std::vector<std::string>& outPaths)
{
    for (;;) {
        errno = 0;
        const dirent* const entry = sIngestCalls.mReadDir(inFolder);
        if (entry == nullptr) {
            return errno == 0;
        }
        if (!IsItselfOrAbove(entry->d_name)) {
            outPaths.push_back(inStem + entry->d_name);
        }
    }
}

} // namespace

bool IdentifyFolder(const UTF16String& inFolder, FolderIdentity& outIdentity)
{
    std::string path;
    struct stat status;
    if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(inFolder, path)) || ::stat(path.c_str(), &status) != 0
        || !S_ISDIR(status.st_mode)) {
        return false;
    }
    outIdentity = {status.st_dev, status.st_ino};
    return true;
}

bool ListFolder(const UTF16String& inFolder, std::vector<std::string>& outPaths)
{
    outPaths.clear();
    std::string path;
    if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(inFolder, path))) {
        return false;
    }
    const int file = sIngestCalls.mOpen(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const folder = file >= 0 ? ::fdopendir(file) : nullptr;
    if (folder == nullptr) {
        if (file >= 0) {
            ::close(file);
        }
        return false;
    }
    const bool isWhole = ReadEntries(folder, path + (path.back() == '/' ? "" : "/"), outPaths);
    ::closedir(folder);
    return isWhole;
}

bool SetLastWriteTime(ORL::File& ioFile, unsigned __int64 inTime)
{
    constexpr long long kSecondsTo1970 = 11644473600;
    const struct timespec time
    {
        static_cast<std::time_t>(static_cast<long long>(inTime / 10000000) - kSecondsTo1970),
            static_cast<long>(inTime % 10000000 * 100)
    };
    const struct timespec times[] = {time, time};
    return sIngestCalls.mFUTimens(DescriptorOf(ioFile), times) == 0;
}

bool FlushFile(ORL::File& ioFile)
{
    return sIngestCalls.mFDataSync(DescriptorOf(ioFile)) == 0;
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
    const int file = sIngestCalls.mOpen(inPath.c_str(), O_RDONLY | O_CLOEXEC);
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
        return FlushPath(top, sIngestCalls.mSyncFs);
    }
    std::set<std::string> folders{top};
    for (const UTF16String& file : inFiles) {
        std::string path;
        if (!ORL::ResultSucceeded(ORL::PathUtils::ToHostPath(file, path)) || !FlushPath(path, sIngestCalls.mFSync)) {
            return false;
        }
        for (path = FolderOf(path); path.size() > top.size(); path = FolderOf(path)) {
            folders.insert(path);
        }
    }
    return std::all_of(folders.begin(), folders.end(),
                       [](const std::string& inPath) { return FlushPath(inPath, sIngestCalls.mFSync); });
}

} // namespace orl
