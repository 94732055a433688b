// The search for a process compared with one pass over /proc that reads each comm, like pgrep -x.
//
// Question: what does matching the whole name cost? comm is truncated to 15 bytes, so the library reads the exe link
// instead. No process has the name that both search for, so both visit every process on the machine.
#include "Harness.h"

#include <ORLProcess.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool CommOf(const char* inIdentifier, char (&outName)[64])
{
    char path[64];
    std::snprintf(path, sizeof(path), "/proc/%.20s/comm", inIdentifier);
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const ssize_t size = ::read(file, outName, sizeof(outName) - 1);
    ::close(file);
    if (size <= 0) {
        return false;
    }
    outName[size - 1] = '\0'; // removes the line feed
    return true;
}

bool PlainIsRunning(const char* inName)
{
    DIR* const folder = ::opendir("/proc");
    bool isFound = false;
    char name[64] = {};
    while (const dirent* const entry = ::readdir(folder)) {
        if (entry->d_name[0] >= '1' && entry->d_name[0] <= '9' && CommOf(entry->d_name, name)) {
            isFound = isFound || std::strcmp(name, inName) == 0;
        }
    }
    ::closedir(folder);
    return isFound;
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const char kName[] = "no process so";
    const UTF16String name(kName, kName + sizeof(kName) - 1);
    Bench::Group("a name among all processes of the machine")
        .Ours("IsProcessRunning", Bench::AtMost(1.5),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      Bench::DoNotOptimize(
                          ORL::Process::IsProcessRunning(name, ORL::Process::ProcessSearchFlags::kExactMatch));
                  }
              })
        .Peer("one pass over comm",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      Bench::DoNotOptimize(PlainIsRunning(kName));
                  }
              })
        .Run();
    return Bench::Finish();
}
