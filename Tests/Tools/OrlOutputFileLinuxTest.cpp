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
#include <unistd.h>

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

    // Runs orl as an ordinary user, who owns the folder and its files. Returns the exit code.
    int ExtractWithoutRights(const std::string& inName) const
    {
        std::string as;
        if (::geteuid() == 0) {
            as = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
            EXPECT_EQ(0, ::lchown(mFolder.Host().c_str(), 65534, 65534));
            for (const auto& entry : fs::directory_iterator(mFolder.Host())) {
                EXPECT_EQ(0, ::lchown(entry.path().c_str(), 65534, 65534)) << entry.path();
            }
        }
        const std::string command = as + "'" + FolderOfThisProgram() + "orl' res extract '" + FolderOfThisProgram()
                                    + "resources_lookup.res' shelf FirstName -o '" + Host(inName) + "' 2>/dev/null";
        return WEXITSTATUS(std::system(command.c_str()));
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

// The rename alone would replace the file: it needs no right to write to it.
TEST_F(OrlOutputFile, WriteProtectedFile_IsRefused)
{
    mFolder.MakeFile("file", "the old file");
    ASSERT_EQ(0, ::chmod(Host("file").c_str(), 0444));
    EXPECT_EQ(1, ExtractWithoutRights("file"));
    EXPECT_EQ("the old file", ContentsOf("file"));
    EXPECT_EQ(1u, Count());
}

TEST_F(OrlOutputFile, FileInAWriteProtectedFolder_IsWrittenDirectly)
{
    mFolder.MakeFile("file", "the old file, longer than the new one");
    ASSERT_EQ(0, ::chmod(mFolder.Host().c_str(), 0555));
    EXPECT_EQ(0, ExtractWithoutRights("file"));
    ASSERT_EQ(0, ::chmod(mFolder.Host().c_str(), 0755));
    EXPECT_EQ("by text", ContentsOf("file"));
    EXPECT_EQ(1u, Count());
}

TEST_F(OrlOutputFile, NewFileInAWriteProtectedFolder_IsRefused)
{
    ASSERT_EQ(0, ::chmod(mFolder.Host().c_str(), 0555));
    EXPECT_EQ(1, ExtractWithoutRights("file"));
    ASSERT_EQ(0, ::chmod(mFolder.Host().c_str(), 0755));
    EXPECT_EQ(0u, Count());
}

// Somebody else may have planted links beside the result.
TEST_F(OrlOutputFile, LinkWithATemporaryName_IsNotFollowed)
{
    mFolder.MakeFile("victim", "not touched");
    fs::create_symlink("victim", Host("file.part"));
    ExpectExtracted("file");
    EXPECT_EQ("not touched", ContentsOf("victim"));
    EXPECT_FALSE(fs::is_symlink(Host("file")));
    EXPECT_TRUE(fs::is_symlink(Host("file.part")));
    EXPECT_EQ(3u, Count());
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
