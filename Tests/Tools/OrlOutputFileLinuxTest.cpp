// Writes output files of orl over private files, links and pipes, and with names that only Linux allows.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class OrlOutputFile : public testing::Test
{
protected:
    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).string(); }

    ProcessResult Extract(const std::string& inName) const
    {
        return RunBesideThisProgram("orl", {"res", "extract", FolderOfThisProgram() + "resources_lookup.res", "shelf",
                                            "FirstName", "-o", Host(inName)});
    }

    void ExpectExtracted(const std::string& inName) const
    {
        const ProcessResult result = Extract(inName);
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ("by text", ContentsOf(inName));
    }

    std::string ContentsOf(const std::string& inName) const
    {
        std::ifstream file(Host(inName), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    std::size_t Count() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(mFolder.Host()), fs::directory_iterator()));
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlOutputFile, PrivateFile_StaysPrivate)
{
    mFolder.MakeFile("file", "the old file");
    ASSERT_EQ(0, ::chmod(Host("file").c_str(), 0600));
    ExpectExtracted("file");
    struct stat status
    {
    };
    ASSERT_EQ(0, ::stat(Host("file").c_str(), &status));
    EXPECT_EQ(0600u, status.st_mode & 07777u);
    EXPECT_EQ(1u, Count());
}

TEST_F(OrlOutputFile, LinkToAFile_StaysALink)
{
    mFolder.MakeFile("file", "the old file");
    fs::create_symlink("file", Host("link"));
    ExpectExtracted("link");
    EXPECT_TRUE(fs::is_symlink(Host("link")));
    EXPECT_EQ("by text", ContentsOf("file"));
    EXPECT_EQ(2u, Count());
}

TEST_F(OrlOutputFile, DanglingLink_LeadsToANewFile)
{
    fs::create_symlink("file", Host("link"));
    ExpectExtracted("link");
    EXPECT_TRUE(fs::is_symlink(Host("link")));
    EXPECT_EQ("by text", ContentsOf("file"));
}

TEST_F(OrlOutputFile, LongestName_IsWritten)
{
    ExpectExtracted(std::string(255, 'n'));
    EXPECT_EQ(1u, Count());
}

TEST_F(OrlOutputFile, Pipe_IsWrittenDirectly)
{
    ASSERT_EQ(0, ::mkfifo(Host("pipe").c_str(), 0600));
    const std::string command = "cat '" + Host("pipe") + "' > '" + Host("read") + "' & '" + FolderOfThisProgram()
                                + "orl' res extract '" + FolderOfThisProgram()
                                + "resources_lookup.res' shelf FirstName -o '" + Host("pipe") + "' && wait";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
    EXPECT_EQ("by text", ContentsOf("read"));
    EXPECT_TRUE(fs::is_fifo(Host("pipe")));
}

TEST_F(OrlOutputFile, Folder_IsRefused)
{
    mFolder.MakeFolder("folder");
    const ProcessResult result = Extract("folder");
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("orl: res extract: cannot write \"" + Host("folder") + "\": it is a directory\n", result.mErrors);
    EXPECT_EQ(1u, Count());
}

TEST_F(OrlOutputFile, FullDisk_LeavesTheOldFileAndNothingElse)
{
    mFolder.MakeFile("clip.y4m", "the old file");
    const std::string command = "ulimit -f 1000; trap '' XFSZ; exec '" + FolderOfThisProgram() + "orl' make-clip '"
                                + Host("clip.y4m") + "' --size 2M 2> /dev/null";
    const int status = std::system(("bash -c \"" + command + "\"").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));
    EXPECT_EQ("the old file", ContentsOf("clip.y4m"));
    EXPECT_EQ(1u, Count());
}
