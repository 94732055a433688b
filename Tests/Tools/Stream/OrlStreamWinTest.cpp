// Runs orl stream in cases in which Windows behaves differently.
#include "ShrinkingStream.h"

#include <windows.h>

using namespace ORLTest;

// The read past the new end is accepted and fails when it completes; after that no more completions are delivered. The
// stream's timeout is longer than this test's, so the stream must detect the truncation itself.
TEST(OrlStreamCut, AtABlock_IsToldWithoutTheWholePatience)
{
    const std::string said = OutputOfTruncatedStream(4096);
    EXPECT_EQ(0u, said.find("no answer: stream: \"")) << said;
    EXPECT_NE(std::string::npos, said.find("\" has 4096 of 262144 bytes left")) << said;
    EXPECT_NE(std::string::npos, said.find("the file shrank while it was read\n")) << said;
}

TEST(OrlStreamWin, FileThatAnotherKeepsToItself_IsSaidOnOneLineAndTheOthersAreStreamed)
{
    const TempFolder folder;
    folder.MakeFile("held.mov", "held");
    folder.MakeFile("clip.mov", "123456789");
    const HANDLE holder =
        ::CreateFileW((folder.Host() / "held.mov").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, holder);
    const ProcessResult result = RunBesideThisProgram(
        "orl", {"stream", (folder.Host() / "held.mov").u8string(), (folder.Host() / "clip.mov").u8string()});
    ::CloseHandle(holder);
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("it cannot be opened for reading\n")) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mOutput.find("cbf43926")) << result.mOutput;
}
