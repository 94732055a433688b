// orl stream with files and kernels that only this platform has.
#include "ShrinkingStream.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
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

    // The bad file fails with one line, and the good one beside it is streamed.
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
    ExpectComplaint("pipe", "it cannot be opened for reading");
}

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

// The read past the new end fails at its start, so the stream can say where.
TEST(OrlStreamCut, AtABlock_IsToldAtOnce)
{
    const std::string said = SaidOfAStreamCutTo(4096);
    EXPECT_EQ(0u, said.find("failure: stream: cannot read \"")) << said;
    EXPECT_NE(std::string::npos, said.find("\" at byte 4096: ")) << said;
}
