// Runs orl info with host paths that do not exist on Windows.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

using namespace ORLTest;

namespace {

bool Shows(const ProcessResult& inResult, const std::string& inText)
{
    return inResult.mExitCode == 0 && inResult.mOutput.find(inText) != std::string::npos;
}

} // namespace

TEST(OrlInfo, ARelativeHostPath_StartsInTheCurrentFolder)
{
    const TempFolder folder;
    folder.MakeFile("clip.mov");
    const ProcessResult result = RunBesideThisProgram("orl", {"info", "clip.mov"}, folder.Host().string());
    EXPECT_TRUE(Shows(result, folder.Host().string() + "/clip.mov\n")) << result.mOutput << result.mErrors;
    EXPECT_TRUE(Shows(result, "kind           file\n")) << result.mOutput;
}

TEST(OrlInfo, ANameThatIsNotUTF8_ShowsItsBytesAsHostPath)
{
    const TempFolder folder;
    folder.MakeFile("caf\xE9");
    const std::string host = folder.Host().string() + "/caf\xE9";
    const ProcessResult result = RunBesideThisProgram("orl", {"info", host});
    EXPECT_TRUE(Shows(result, host + "\n")) << result.mOutput << result.mErrors;
    EXPECT_TRUE(Shows(result, "\\caf\xEF\x83\xA9\n")) << "the library path holds the byte's unit";
    EXPECT_TRUE(Shows(result, "kind           file\n"));
    EXPECT_TRUE(Shows(RunBesideThisProgram("orl", {"info", "--json", host}), "caf\xEF\xBF\xBD\""))
        << "JSON holds no bytes that are not UTF-8";
}

TEST(OrlInfo, AHostNameThatLooksLikeADrive_IsReachedFromItsFolder)
{
    const TempFolder folder;
    folder.MakeFile("C:clip");
    const ProcessResult result = RunBesideThisProgram("orl", {"info", "./C:clip"}, folder.Host().string());
    EXPECT_TRUE(Shows(result, "kind           file\n")) << result.mOutput << result.mErrors;
}

TEST(OrlInfo, AFullDiskUnderTheOutput_IsAFailure)
{
    const std::string command = "'" + FolderOfThisProgram() + "orl' info > /dev/full 2> /dev/null";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));
}
