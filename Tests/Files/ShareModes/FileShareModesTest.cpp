// Tests which handles of one file are compatible: in one process, in two, and with deleting, moving, copying and
// replacing.
#include "ShareModes.h"
#include <FileSupport.h>

#include <Platform/AsyncFiles.h>
#include <ProcessRunner.h>

#include <atomic>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

using namespace ORL;
using namespace ORL::Files::Platform;
using namespace ORLTest;

namespace {

class OpenHandle
{
public:
    OpenHandle(const UTF16String& inPath, const OpenMode& inMode) { mError = OpenWithMode(inPath, inMode, mFile); }
    ~OpenHandle()
    {
        if (mError == 0) {
            CloseFile_Impl(mFile);
        }
    }
    OpenHandle(const OpenHandle&) = delete;
    OpenHandle& operator=(const OpenHandle&) = delete;

    SystemError mError = 0;

private:
    Handle mFile = nullptr;
};

constexpr OpenMode kExclusive = {kGenericRead | kGenericWrite, 0};

} // namespace

TEST(FileShareModes, EveryPairOfHandlesOfAProcess_FollowsTheRule)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const UTF16String path = folder.Path(u"f");
    int conflicts = 0;
    for (const OpenMode& first : AllOpenModes()) {
        const OpenHandle held(path, first);
        ASSERT_EQ(0u, held.mError) << NameOf(first);
        for (const OpenMode& second : AllOpenModes()) {
            const OpenHandle other(path, second);
            const unsigned expected = AreCompatible(first, second) ? 0 : 32;
            EXPECT_EQ(expected, other.mError) << NameOf(first) << ", then " << NameOf(second);
            conflicts += expected != 0 ? 1 : 0;
        }
    }
    EXPECT_EQ(1276, conflicts) << "as many as at home";
    EXPECT_EQ(0u, OpenHandle(path, kExclusive).mError) << "everything is closed";
}

TEST(FileShareModes, EveryPairOfHandlesOfTwoProcesses_FollowsTheRule)
{
    const TempFolder folder;
    const std::vector<OpenMode> all = AllOpenModes();
    std::vector<std::unique_ptr<OpenHandle>> held;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string name = std::to_string(i);
        folder.MakeFile(name);
        held.push_back(std::make_unique<OpenHandle>(folder.Path(std::u16string(name.begin(), name.end())), all[i]));
        ASSERT_EQ(0u, held.back()->mError);
    }
    const ProcessResult result = RunBesideThisProgram("share_mode_host", {"matrix", folder.Host().u8string()});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    std::istringstream answers(result.mOutput);
    for (const OpenMode& first : all) {
        for (const OpenMode& second : all) {
            unsigned answer = 1;
            ASSERT_TRUE(static_cast<bool>(answers >> answer));
            EXPECT_EQ(AreCompatible(first, second) ? 0u : 32u, answer) << NameOf(first) << ", then " << NameOf(second);
        }
    }
}

// A process that exits with the file open leaves no share mode behind, not even briefly.
TEST(FileShareModes, AProcessThatEndsWithAFileOpen_HoldsItNoMore)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const ProcessResult result = RunBesideThisProgram("share_mode_host", {"hold", (folder.Host() / "f").u8string()});
    EXPECT_EQ("0\n", result.mOutput);
    EXPECT_EQ(0u, OpenHandle(folder.Path(u"f"), kExclusive).mError);
}

TEST(FileShareModes, AnotherHandleOfAnotherName_IsTheSameFile)
{
    const TempFolder folder;
    folder.MakeFile("f");
    std::error_code error;
    std::filesystem::create_hard_link(folder.Host() / "f", folder.Host() / "g", error);
    if (error) {
        GTEST_SKIP() << "no second names here: " << error.message();
    }
    const OpenHandle held(folder.Path(u"f"), kExclusive);
    EXPECT_EQ(0u, held.mError);
    EXPECT_EQ(32u, OpenHandle(folder.Path(u"g"), kExclusive).mError);
}

TEST(FileShareModes, ThroughFile_AreSharingViolations)
{
    const TempFolder folder;
    folder.MakeFile("f", "x");
    const UTF16String path = folder.Path(u"f");
    {
        Opened first(path, kRead, kShareReaders);
        EXPECT_EQ(kSuccess, first.mResult);
        EXPECT_EQ(kSuccess, Opened(path, kRead, kShareReaders).mResult);
        EXPECT_EQ(kSharingViolation, Opened(path, kWrite, kShareEverything).mResult);
        EXPECT_EQ(kSharingViolation, Opened(path, kRead, kShareNone).mResult);
        EXPECT_EQ(kSharingViolation, File::Delete(path));
        EXPECT_EQ(kSharingViolation, File::Move(path, folder.Path(u"g")));
        first.mFile.Close();
        EXPECT_EQ(kSuccess, Opened(path, kWrite, kShareNone).mResult);
    }
    {
        Opened first(path, kWrite, kShareNone);
        EXPECT_EQ(kSharingViolation, File::Copy(path, folder.Path(u"copy")));
        folder.MakeFile("other");
        EXPECT_EQ(kSharingViolation, File::Copy(folder.Path(u"other"), path));
        unsigned __int64 size = 0;
        EXPECT_EQ(kSuccess, File::SizeOnDisk(path, size)) << "a size by name needs no handle";
    }
    EXPECT_EQ("x", ContentsOf(folder, "f")) << "a copy that was refused has not emptied the file";
}

// An AsyncFileReader opens its file with read access and shares read and write access.
TEST(FileShareModes, AFileOfAsynchronousReads_IsAHolderToo)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const UTF16String path = folder.Path(u"f");
    AsyncFiles::Platform::Handle reader = nullptr;
    const OpenMode asReader = {kGenericRead, kShareRead | kShareWrite};
    for (const OpenMode& other : AllOpenModes()) {
        {
            const OpenHandle held(path, other);
            const SystemError error = AsyncFiles::Platform::OpenUnbuffered_Impl(path, reader);
            EXPECT_EQ(AreCompatible(other, asReader) ? 0u : 32u, error) << NameOf(other);
            if (error == 0) {
                AsyncFiles::Platform::CloseFile_Impl(reader);
            }
        }
        ASSERT_EQ(0u, AsyncFiles::Platform::OpenUnbuffered_Impl(path, reader));
        EXPECT_EQ(AreCompatible(asReader, other) ? 0u : 32u, OpenHandle(path, other).mError) << NameOf(other);
        AsyncFiles::Platform::CloseFile_Impl(reader);
    }
    EXPECT_EQ(0u, OpenHandle(path, kExclusive).mError);
}

// Several threads open the file exclusively: at most one holds it at a time, and at least one succeeds.
TEST(FileShareModes, ThreadsThatRace_AreNeverTwoIn)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const UTF16String path = folder.Path(u"f");
    std::atomic<int> inside{0};
    std::atomic<int> got{0};
    std::atomic<int> wrong{0};
    const auto race = [&] {
        for (int round = 0; round < 500; ++round) {
            Handle file = nullptr;
            const SystemError error = OpenWithMode(path, kExclusive, file);
            if (error == 0) {
                wrong += inside.fetch_add(1) != 0 ? 1 : 0;
                ++got;
                --inside;
                CloseFile_Impl(file);
            }
            wrong += error != 0 && error != 32 ? 1 : 0;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(race);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    EXPECT_LT(0, got);
}

// Two processes open the file exclusively: they never both hold it, and neither waits forever. The number of refusals
// before a success depends on the scheduler.
TEST(FileShareModes, TwoProcessesThatRace_AreNeverBothIn)
{
    const TempFolder folder;
    folder.MakeFile("f");
    const std::vector<std::string> arguments = {"race", (folder.Host() / "f").u8string(), "1000"};
    ProcessResult results[2];
    std::thread other([&] { results[1] = RunBesideThisProgram("share_mode_host", arguments); });
    results[0] = RunBesideThisProgram("share_mode_host", arguments);
    other.join();
    for (const ProcessResult& result : results) {
        int got = -1;
        int wrong = -1;
        int notAlone = -1;
        std::istringstream(result.mOutput) >> got >> wrong >> notAlone;
        EXPECT_FALSE(result.mTimedOut);
        EXPECT_EQ(1000, got);
        EXPECT_EQ(0, wrong);
        EXPECT_EQ(0, notAlone);
    }
}
