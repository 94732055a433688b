// Tests trees with far more levels than a process may have descriptors, and with host paths beyond the length limit.
#include "DirectoryTreesOnLinux.h"

#include <FaultySystemCallsLinux.h>
#include <SystemProbes.h>
#include <TextHelpers.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <new>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr int kDepth = 3000;
constexpr rlim_t kFewDescriptors = 64;

/// While an instance exists, the process may open only a few descriptors.
class FewDescriptors
{
public:
    explicit FewDescriptors(rlim_t inCount = kFewDescriptors)
    {
        EXPECT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &mEarlier));
        const struct rlimit few = {inCount, mEarlier.rlim_max};
        EXPECT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &few));
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &mEarlier); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    struct rlimit mEarlier = {};
};

/// Opens descriptors until only inLeft are available.
class NearlyAllDescriptors
{
public:
    explicit NearlyAllDescriptors(unsigned inLeft)
    {
        for (int file = ::dup(0); file >= 0; file = ::dup(0)) {
            mFiles.push_back(file);
        }
        for (; inLeft != 0; --inLeft) {
            ::close(mFiles.back());
            mFiles.pop_back();
        }
    }
    ~NearlyAllDescriptors()
    {
        for (const int file : mFiles) {
            ::close(file);
        }
    }

private:
    std::vector<int> mFiles;
};

int OpenFolderHere(int inFolder, const char* inName)
{
    return ::openat(inFolder, inName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

class DeepTrees : public DirectoryTreesOnLinux
{
protected:
    // Creates the trees in memory if the machine has /dev/shm: some volumes are slow at each level of a deep tree.
    DeepTrees() : DirectoryTreesOnLinux(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path())
    {
        mFolder.MakeFolder("from");
    }

    // std::filesystem cannot remove trees deeper than the stack and the descriptors allow.
    ~DeepTrees() override
    {
        for (const char* name : {"from", "to"}) {
            RemoveChain(name);
        }
    }

    // Makes nested folders "d", with a file "f" in every inFileEach-th and in the last.
    void MakeChain(const char* inTop, int inDepth, int inFileEach = 100) const
    {
        int folder = ::open((mFolder.Host() / inTop).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int level = 1; level <= inDepth; ++level) {
            ASSERT_EQ(0, ::mkdirat(folder, "d", 0755));
            const int below = OpenFolderHere(folder, "d");
            ASSERT_LE(0, below);
            ::close(folder);
            folder = below;
            if (level % inFileEach == 0 || level == inDepth) {
                const int file = ::openat(folder, "f", O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
                ASSERT_LE(0, file);
                const std::string text = std::to_string(level);
                ASSERT_EQ(static_cast<ssize_t>(text.size()), ::write(file, text.data(), text.size()));
                ::close(file);
            }
        }
        ::close(folder);
    }

    // Returns the depth to which the chain is complete, including its files.
    int DepthOfChain(const char* inTop, int inFileEach = 100) const
    {
        int folder = ::open((mFolder.Host() / inTop).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        int level = 0;
        for (int below = OpenFolderHere(folder, "d"); below >= 0; below = OpenFolderHere(folder, "d")) {
            ::close(folder);
            folder = below;
            ++level;
            if (level % inFileEach == 0) {
                char text[16] = {};
                const int file = ::openat(folder, "f", O_RDONLY | O_CLOEXEC);
                EXPECT_LT(0, ::read(file, text, sizeof(text) - 1)) << level;
                EXPECT_EQ(std::to_string(level), text);
                ::close(file);
            }
        }
        ::close(folder);
        return level;
    }

    void RemoveChain(const char* inTop) const
    {
        std::vector<int> none;
        int folder = ::open((mFolder.Host() / inTop).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        int depth = 0;
        for (int below = OpenFolderHere(folder, "d"); below >= 0; below = OpenFolderHere(folder, "d")) {
            ::close(folder);
            folder = below;
            ++depth;
        }
        for (; depth > 0; --depth) {
            ::unlinkat(folder, "f", 0);
            ::unlinkat(folder, "d", AT_REMOVEDIR);
            const int above = OpenFolderHere(folder, "..");
            ::close(folder);
            folder = above;
        }
        ::unlinkat(folder, "d", AT_REMOVEDIR);
        ::close(folder);
    }
};

// Makes every rename between two folders a cross-volume move.
void SplitVolumes(FaultySystemCalls& ioCalls)
{
    ioCalls.Underlying().mFSync = [](int) { return 0; };
    ioCalls.Underlying().mRenameAt = [](int inFrom, const char* inName, int inTo, const char* inNewName,
                                        unsigned inFlags) {
        if (inFrom == inTo) {
            return Linux::kSystem.mRenameAt(inFrom, inName, inTo, inNewName, inFlags);
        }
        errno = EXDEV;
        return -1;
    };
}

std::vector<UTF16String> List(const UTF16String& inPath)
{
    std::vector<UTF16String> paths;
    Directory::ConstructDirectory(inPath).GetContainedPaths(paths, true, Directory::kNoLimit);
    return paths;
}

} // namespace

TEST_F(DeepTrees, Copy_OfDepth3000_CostsNoDescriptors)
{
    MakeChain("from", kDepth);
    const unsigned handles = OpenHandles();
    {
        const FewDescriptors few;
        EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    }
    EXPECT_EQ(kDepth, DepthOfChain("to"));
    EXPECT_EQ(kDepth, DepthOfChain("from"));
    EXPECT_EQ(handles, OpenHandles());
}

TEST_F(DeepTrees, MoveToAnotherVolume_OfDepth3000_CostsNoDescriptors)
{
    MakeChain("from", kDepth);
    const unsigned handles = OpenHandles();
    {
        const FewDescriptors few;
        FaultySystemCalls calls;
        SplitVolumes(calls);
        EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    }
    EXPECT_EQ(kDepth, DepthOfChain("to"));
    EXPECT_TRUE(fs::is_empty(Host("from")));
    EXPECT_EQ(handles, OpenHandles());
}

TEST_F(DeepTrees, Move_OfDepth3000_CostsNoDescriptors)
{
    MakeChain("from", kDepth);
    {
        const FewDescriptors few;
        EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    }
    EXPECT_EQ(kDepth, DepthOfChain("to"));
    EXPECT_TRUE(fs::is_empty(Host("from")));
}

// Merges folder by folder, because each already exists at the destination.
TEST_F(DeepTrees, Move_OntoATreeOfDepth3000_JoinsItWithoutDescriptors)
{
    MakeChain("from", kDepth);
    mFolder.MakeFolder("to");
    MakeChain("to", kDepth, kDepth + 1);
    {
        const FewDescriptors few;
        EXPECT_EQ(kSuccess, Directory::Move(From(), To()));
    }
    EXPECT_EQ(kDepth, DepthOfChain("to"));
    EXPECT_TRUE(fs::is_empty(Host("from")));
}

TEST_F(DeepTrees, DeleteNotEmpty_OfDepth3000_CostsNoDescriptors)
{
    MakeChain("from", kDepth);
    {
        const FewDescriptors few;
        EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(From()));
    }
    EXPECT_FALSE(fs::exists(Host("from")));
}

// Host paths are limited to 4095 bytes; listings are not.
TEST_F(DeepTrees, Listing_OfDepth3000_IsWhole)
{
    MakeChain("from", kDepth);
    const unsigned handles = OpenHandles();
    std::vector<UTF16String> paths;
    {
        const FewDescriptors few;
        paths = List(From());
    }
    EXPECT_EQ(handles, OpenHandles());
    const std::size_t files = kDepth / 100;
    ASSERT_EQ(kDepth + files, paths.size());
    std::size_t longest = 0;
    for (const UTF16String& path : paths) {
        longest = std::max(longest, path.size());
    }
    EXPECT_EQ(From().size() + 2 * kDepth + 2, longest) << "the file in the deepest";
    EXPECT_EQ(From() + Units(u"\\d"), paths.back());
}

// A listing that runs out of descriptors throws.
TEST_F(DeepTrees, Listing_WithoutADescriptor_ThrowsAndIsNeverCut)
{
    MakeChain("from", 5, 1);
    const std::size_t whole = List(From()).size();
    const FewDescriptors few;
    for (unsigned left = 0; left <= 4; ++left) {
        std::exception_ptr
            thrown; // outlives `held`: the undefined behaviour sanitizer needs descriptors to check the exception
        const NearlyAllDescriptors held(left);
        try {
            EXPECT_EQ(whole, List(From()).size()) << left;
            EXPECT_LT(0u, left);
        } catch (const eDirectoryNotListed&) {
            thrown = std::current_exception();
            EXPECT_EQ(0u, left) << "one is enough for any depth";
        }
    }
}

TEST_F(DeepTrees, Copy_WithoutADescriptor_FailsAndLeavesWholeFiles)
{
    MakeChain("from", 20, 1);
    const FewDescriptors few;
    int failures = 0;
    for (unsigned left = 0; left <= 20; ++left) {
        RemoveChain("to");
        const NearlyAllDescriptors held(left);
        const Result result = Directory::Copy(From(), To());
        EXPECT_TRUE(result == kSuccess || result == kGeneralFailure);
        failures += result == kSuccess ? 0 : 1;
        if (result == kSuccess) {
            EXPECT_LE(2u, left);
        }
    }
    EXPECT_LT(0, failures);
    EXPECT_EQ(kSuccess, Directory::Copy(From(), To()));
    EXPECT_EQ(20, DepthOfChain("to", 1));
}

// When the walk ascends, each parent must be the folder from which it descended.
TEST_F(DeepTrees, AFolderThatIsMovedAwayMeanwhile_EndsTheWorkAndNothingElseIsTouched)
{
    MakeChain("from", 12);
    mFolder.MakeFolder("elsewhere");
    mFolder.MakeFile("elsewhere/f", "precious");
    FaultySystemCalls calls;
    // The test moves a folder out of the tree while the deletion is in the deepest folder, at its only file.
    const fs::path deep = Host("from/d/d/d/d/d/d/d/d");
    calls.Before(FaultySystemCalls::kUnlinkAt, 1, [&] { fs::rename(deep, Host("elsewhere/d")); });
    EXPECT_EQ(kGeneralFailure, Directory::DeleteNotEmpty(From()));
    EXPECT_EQ("precious", Read(Host("elsewhere"))["f"]);
    EXPECT_TRUE(fs::exists(Host("from/d/d/d/d/d/d/d")));
    EXPECT_TRUE(fs::exists(Host("elsewhere/d")));
}
