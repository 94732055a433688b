// Question: what does a recursive listing that returns library paths cost, compared with hand-written code and with the
// standard library's iterator?
//
// The tree has 100000 entries on this program's disk, fully cached: 2000 folders with 49 files each. All
// rivals report each path and whether it is a folder. The hand-written listing is straightforward: it checks each
// folder for emptiness first, and then queries the kind of each entry by its path.
#include "Harness.h"

#include <ORLDirectory.h>
#include <ORLHostPath.h>

#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kFolders = 2000;
constexpr int kFilesInEach = 49;
constexpr std::size_t kEntries = std::size_t{kFolders} * (kFilesInEach + 1);

[[noreturn]] void Fail(const char* inWhat)
{
    std::fprintf(stderr, "bench_DirectoryBench: %s\n", inWhat);
    std::exit(1);
}

class Tree
{
public:
    Tree()
    {
        mFolder =
            fs::read_symlink("/proc/self/exe").parent_path() / ("orl-bench-" + std::to_string(std::random_device()()));
        for (int i = 0; i < kFolders; ++i) {
            const fs::path folder = mFolder / ("group" + std::to_string(i / 50)) / ("folder" + std::to_string(i));
            fs::create_directories(folder);
            for (int j = 0; j < kFilesInEach; ++j) {
                const std::string name = (folder / ("clip_" + std::to_string(j) + ".mov")).string();
                ::close(::open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
            }
        }
    }
    ~Tree() { fs::remove_all(mFolder); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    const fs::path& Folder() const { return mFolder; }

private:
    fs::path mFolder;
};

void Check(std::size_t inFound)
{
    if (inFound < kEntries) {
        Fail("a rival has not listed the whole tree");
    }
}

void ListOurs(const ORL::Directory& inDirectory)
{
    std::vector<UTF16String> files;
    std::vector<ORL::Directory> folders;
    inDirectory.GetContainedFileAndDirectoryPaths(files, folders, true, ORL::Directory::kNoLimit);
    Check(files.size() + folders.size());
}

void ListOurPaths(const ORL::Directory& inDirectory)
{
    std::vector<UTF16String> paths;
    inDirectory.GetContainedPaths(paths, true, ORL::Directory::kNoLimit);
    Check(paths.size());
}

bool IsNoEntry(const char* inName)
{
    return inName[0] == '.' && (inName[1] == '\0' || (inName[1] == '.' && inName[2] == '\0'));
}

bool IsEmptyFolder(const std::string& inPath)
{
    DIR* const folder = ::opendir(inPath.c_str());
    if (folder == nullptr) {
        return false;
    }
    const dirent* entry = nullptr;
    do {
        entry = ::readdir(folder);
    } while (entry != nullptr && IsNoEntry(entry->d_name));
    ::closedir(folder);
    return entry == nullptr;
}

bool IsFolder(const std::string& inPath)
{
    struct stat status;
    return ::stat(inPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void ListByHand(const std::string& inFolder, std::vector<std::string>& ioPaths)
{
    if (IsEmptyFolder(inFolder)) {
        return;
    }
    DIR* const folder = ::opendir(inFolder.c_str());
    if (folder == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(folder)) {
        if (!IsNoEntry(entry->d_name)) {
            const std::string path = inFolder + "/" + entry->d_name;
            if (IsFolder(path)) {
                ListByHand(path, ioPaths);
            }
            ioPaths.push_back(path);
        }
    }
    ::closedir(folder);
}

void ListByIterator(const fs::path& inFolder)
{
    std::vector<std::string> files;
    std::vector<std::string> folders;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(inFolder)) {
        (entry.is_directory() ? folders : files).push_back(entry.path().string());
    }
    Check(files.size() + folders.size());
}

template <class Work>
auto Times(Work inWork)
{
    return [inWork](std::uint64_t inCount) {
        while (inCount-- != 0) {
            inWork();
        }
    };
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const Tree tree;
    const std::string host = tree.Folder().string();
    const ORL::Directory directory = ORL::Directory::ConstructDirectory(ORL::PathUtils::FromHostPath(host));
    Bench::Group("list 100000 entries, paths alone")
        .Operations(1)
        .Ours("GetContainedPaths", Bench::AtMost(0.3), Times([&] { ListOurPaths(directory); }))
        .Peer("readdir, stat of each, emptiness of each folder", Times([&] {
                  std::vector<std::string> paths;
                  ListByHand(host, paths);
                  Check(paths.size());
              }))
        .Run();
    Bench::Group("list 100000 entries, files and folders told apart")
        .Operations(1)
        .Ours("GetContainedFileAndDirectoryPaths", Bench::AtMost(1.5), Times([&] { ListOurs(directory); }))
        .Peer("recursive_directory_iterator", Times([&] { ListByIterator(tree.Folder()); }))
        .Run();
    return Bench::Finish();
}
