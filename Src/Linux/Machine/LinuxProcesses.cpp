#include <Platform/Processes.h>

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Files/LinuxLinkTarget.h"
#include "../Paths/LinuxNames.h"
#include "../Paths/LinuxOpenFolder.h"
#include "LinuxProcFile.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string_view>
#include <tvxcore/Text.h>

namespace ORL {
namespace Process {
namespace Platform {

namespace {

using Path = char[40];

void MakePath(Path& outPath, unsigned int inIdentifier, const char* inFile)
{
    std::snprintf(outPath, sizeof(outPath), "/proc/%u/%s", inIdentifier, inFile);
}

std::string_view Leaf(std::string_view inPath)
{
    return inPath.substr(inPath.rfind('/') + 1); // npos + 1 is 0
}

// The kernel appends " (deleted)" to the path of a deleted file. If a file with that full name exists, that suffix is
// part of its name.
std::string_view WithoutDeletedMark(const Linux::LinkTarget& inTarget)
{
    constexpr std::string_view kMark = " (deleted)";
    const std::string_view path(inTarget.Text(), inTarget.Size());
    struct statx status;
    if (path.size() < kMark.size() || path.substr(path.size() - kMark.size()) != kMark
        || Linux::System().mStatx(AT_FDCWD, inTarget.Text(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) == 0) {
        return path;
    }
    return path.substr(0, path.size() - kMark.size());
}

// Returns the name in a command line such as "/usr/bin/editor", "-bash", "server: idle".
std::string_view NameInCommand(std::string_view inCommand)
{
    const std::string_view first = inCommand.substr(0, inCommand.find('\0'));
    const std::string_view name = Leaf(first.substr(0, first.find(": ")));
    return !name.empty() && name.front() == '-' ? name.substr(1) : name;
}

bool NameFromCommandLine(unsigned int inIdentifier, UTF16String& outName)
{
    Path path;
    MakePath(path, inIdentifier, "cmdline");
    char buffer[PATH_MAX];
    std::size_t size = 0;
    if (Linux::ReadProcFile(path, buffer, sizeof(buffer), size) != 0) {
        return false;
    }
    const std::string_view name = NameInCommand(std::string_view(buffer, size));
    outName = tvxcore::utility::UTF8to16(reinterpret_cast<const unsigned char*>(name.data()), name.size());
    return !outName.empty();
}

} // namespace

SystemError ListProcesses_Impl(unsigned int* outIdentifiers, std::size_t inCapacity, std::size_t& outCount)
{
    Linux::OpenFolder folder("/proc");
    if (!folder.IsOpen()) {
        return Linux::SystemErrorFromErrno(errno);
    }
    std::size_t count = 0;
    while (count < inCapacity) {
        const dirent64* const entry = folder.Entries().Next();
        if (entry == nullptr) {
            break;
        }
        std::string_view name(entry->d_name);
        std::uint64_t number = 0;
        if (Linux::TakeNumber(name, number) && name.empty()) {
            outIdentifiers[count++] = static_cast<unsigned int>(number);
        }
    }
    if (folder.Entries().Failure() != 0) {
        return Linux::SystemErrorFromErrno(folder.Entries().Failure());
    }
    outCount = count;
    return SystemErrors::kNoError;
}

// Opens nothing, because GetExecutableName_Impl uses only the process identifier.
ProcessHandle OpenProcess_Impl(unsigned int)
{
    return nullptr;
}

void CloseProcess_Impl(ProcessHandle)
{
}

bool GetExecutableName_Impl(ProcessHandle, unsigned int inIdentifier, UTF16String& outName)
{
    Path path;
    MakePath(path, inIdentifier, "exe");
    Linux::LinkTarget target;
    const int failure = target.Read(AT_FDCWD, path);
    if (target.Size() > 0) {
        const std::string_view name = Leaf(WithoutDeletedMark(target));
        outName.clear();
        Linux::AppendUnitsOfName(outName, name.data(), name.size());
        return true;
    }
    // If the link does not exist, the process has exited or is a kernel thread.
    return failure != ENOENT && NameFromCommandLine(inIdentifier, outName);
}

} // namespace Platform
} // namespace Process
} // namespace ORL
