// Runs orl stream with files and process restrictions that only Linux has.
#include "ShrinkingStream.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

const std::string kText = "123456789";
const std::string kCRCOfText = "cbf43926";

class OrlStreamLinux : public testing::Test
{
protected:
    OrlStreamLinux() { mFolder.MakeFile("clip.mov", kText); }

    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).string(); }

    // Expects one line for the bad file, and that the good one is streamed.
    void ExpectComplaint(const std::string& inName, const std::string& inReason,
                         const std::string& inWhat = "ordinary") const
    {
        const ProcessResult result =
            RunBesideThisProgram("run_restricted", {inWhat, "orl", "stream", Host(inName), Host("clip.mov")});
        EXPECT_EQ(1, result.mExitCode);
        EXPECT_EQ("orl: stream: cannot open \"" + Host(inName) + "\": " + inReason + "\n", result.mErrors);
        EXPECT_NE(std::string::npos, result.mOutput.find(kCRCOfText)) << result.mOutput;
    }

    void ExpectStreamed(const std::string& inPath, const std::string& inWhat = "ordinary") const
    {
        const ProcessResult result =
            RunBesideThisProgram("run_restricted", {inWhat, "orl", "stream", "--verify", inPath});
        EXPECT_EQ(0, result.mExitCode);
        EXPECT_EQ("", result.mErrors);
        EXPECT_NE(std::string::npos, result.mOutput.find(kCRCOfText)) << result.mOutput;
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlStreamLinux, FileWithoutPermission_IsSaidOnOneLine)
{
    mFolder.MakeFile("secret.mov", "secret");
    ASSERT_EQ(0, ::chmod(Host("secret.mov").c_str(), 0));
    ExpectComplaint("secret.mov", "it cannot be opened for reading");
}

TEST_F(OrlStreamLinux, PipeThatNobodyWrites_IsSaidOnOneLine)
{
    ASSERT_EQ(0, ::mkfifo(Host("pipe").c_str(), 0600));
    ExpectComplaint("pipe", "it is a device or a pipe, not a file");
}

TEST_F(OrlStreamLinux, LinkThatLeadsNowhere_IsSaidOnOneLine)
{
    ASSERT_EQ(0, ::symlink("nothing", Host("link").c_str()));
    ExpectComplaint("link", "it is a dangling link");
}

// A name may contain terminal control characters, and a character of several bytes is one column wide.
TEST_F(OrlStreamLinux, NameWithControlCharacters_IsShownOnItsRowWithoutThem)
{
    mFolder.MakeFile("a\x1b[31m\nb", kText);
    mFolder.MakeFile("caf\xC3\xA9s.mov", kText);
    const ProcessResult result =
        RunBesideThisProgram("orl", {"stream", Host("a\x1b[31m\nb"), Host("caf\xC3\xA9s.mov")});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const std::size_t row = result.mOutput.find('\n') + 1;
    EXPECT_EQ(row, result.mOutput.find("a?[31m?b             9")) << result.mOutput;
    EXPECT_NE(std::string::npos, result.mOutput.find("\ncaf\xC3\xA9s.mov            9")) << result.mOutput;
}

TEST_F(OrlStreamLinux, ClipForADeviceOrAPipe_IsRefusedAndTheDeviceStays)
{
    ASSERT_EQ(0, ::mkfifo(Host("pipe").c_str(), 0600));
    const ProcessResult result = RunBesideThisProgram("orl", {"make-clip", Host("pipe"), "--size", "1"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: make-clip: cannot write \"" + Host("pipe") + "\": it is a device or a pipe, not a file\n",
              result.mErrors);
    EXPECT_TRUE(std::filesystem::is_fifo(Host("pipe")));
}

TEST_F(OrlStreamLinux, ClipThatTheSystemCutsShort_LeavesNothingBehindAndTellsWhy)
{
    const std::string command = "ulimit -f 20000; trap '' XFSZ; '" + FolderOfThisProgram() + "orl' make-clip '"
                                + Host("clip.y4m") + "' --size 64M 2> '" + Host("said") + "'";
    const int status = std::system(("bash -c \"" + command + "\"").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));
    std::ifstream said(Host("said"));
    std::string line;
    std::getline(said, line);
    EXPECT_EQ("orl: make-clip: cannot write \"" + Host("clip.y4m") + "\": File too large", line);
    EXPECT_FALSE(std::filesystem::exists(Host("clip.y4m")));
    const auto entries = std::distance(std::filesystem::directory_iterator(mFolder.Host()), {});
    EXPECT_EQ(2, entries) << "clip.mov and the message";
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // the sanitizers use the whole address space
TEST_F(OrlStreamLinux, MemoryThatRunsOut_IsSaidOnOneLine)
{
    mFolder.MakeFile("large.mov");
    ASSERT_EQ(0, ::truncate(Host("large.mov").c_str(), 1 << 30));
    const std::string command = "ulimit -v 500000; '" + FolderOfThisProgram() + "orl' stream --block 64M --depth 2048 '"
                                + Host("large.mov") + "' 2> '" + Host("said") + "'";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));
    std::ifstream said(Host("said"));
    std::string line;
    std::getline(said, line);
    EXPECT_EQ("orl: there is not enough memory", line);
}
#endif

TEST_F(OrlStreamLinux, NameThatIsNotUTF8_IsStreamed)
{
    mFolder.MakeFile("\xFF\xC3(\x80.mov", kText);
    ExpectStreamed(Host("\xFF\xC3(\x80.mov"));
}

TEST_F(OrlStreamLinux, KernelWithoutTheRing_StreamsAllTheSame)
{
    ExpectStreamed(Host("clip.mov"), "EPERM");
    ExpectStreamed(Host("clip.mov"), "ENOSYS");
}

TEST_F(OrlStreamLinux, FileOfAFileSystemInMemory_IsStreamed)
{
    const int file = ::memfd_create("clip.mov", MFD_CLOEXEC);
    ASSERT_EQ(static_cast<ssize_t>(kText.size()), ::write(file, kText.data(), kText.size()));
    ExpectStreamed("/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file));
    ::close(file);
}

// The read past the new end fails at its start, so the message can name the position.
TEST(OrlStreamCut, AtABlock_IsToldAtOnce)
{
    const std::string said = OutputOfTruncatedStream(4096);
    EXPECT_EQ(0u, said.find("failure: stream: cannot read \"")) << said;
    EXPECT_NE(std::string::npos, said.find("\" at byte 4096: ")) << said;
}
