// Tests cross-volume moves, which cannot rename: files are copied, links are recreated, folders are refused.
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>
#include <UnprivilegedLinux.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

bool IsLink(const TempFolder& inFolder, const std::string& inName)
{
    return std::filesystem::is_symlink(inFolder.Host() / inName);
}

std::string TargetOf(const TempFolder& inFolder, const std::string& inName)
{
    return IsLink(inFolder, inName) ? std::filesystem::read_symlink(inFolder.Host() / inName).string() : "<none>";
}

dev_t DeviceOf(const std::filesystem::path& inPath)
{
    struct stat status = {};
    return ::stat(inPath.c_str(), &status) == 0 ? status.st_dev : 0;
}

// Makes every rename fail as a cross-volume rename does.
struct TwoVolumes
{
    TwoVolumes() { mCalls.Fail(Faults::kRenameTo, 1, EXDEV, Faults::kForEver); }

    TempFolder mFolder;
    Faults mCalls;
};

} // namespace

TEST(FileVolumes, ALink_IsMovedAsALink)
{
    const TwoVolumes volumes;
    const TempFolder& folder = volumes.mFolder;
    folder.MakeFile("target", "x");
    folder.MakeFolder("d");
    for (const char* target : {"target", "d", "nothing"}) {
        std::filesystem::create_symlink(target, folder.Host() / "link");
        EXPECT_EQ(kSuccess, File::Move(folder.Path(u"link"), folder.Path(u"moved")));
        EXPECT_EQ(target, TargetOf(folder, "moved"));
        EXPECT_FALSE(IsLink(folder, "link"));
        std::filesystem::remove(folder.Host() / "moved");
    }
    EXPECT_EQ("x", ContentsOf(folder, "target")) << "what it leads to stays";
}

TEST(FileVolumes, ALinkOntoAnExistingName_IsRefusedAndStays)
{
    const TwoVolumes volumes;
    volumes.mFolder.MakeFile("there", "x");
    std::filesystem::create_symlink("nothing", volumes.mFolder.Host() / "link");
    EXPECT_EQ(kAlreadyExists, File::Move(volumes.mFolder.Path(u"link"), volumes.mFolder.Path(u"there")));
    EXPECT_EQ("x", ContentsOf(volumes.mFolder, "there"));
    EXPECT_EQ("nothing", TargetOf(volumes.mFolder, "link"));
}

TEST(FileVolumes, AFolder_IsAccessDeniedAndStays)
{
    const TwoVolumes volumes;
    volumes.mFolder.MakeFolder("d");
    volumes.mFolder.MakeFile("d/f", "x");
    EXPECT_EQ(kAccessDenied, File::Move(volumes.mFolder.Path(u"d"), volumes.mFolder.Path(u"e")));
    EXPECT_EQ("x", ContentsOf(volumes.mFolder, "d/f"));
    EXPECT_FALSE(std::filesystem::exists(volumes.mFolder.Host() / "e"));
}

TEST(FileVolumes, ASourceThatCannotBeDeleted_StaysBesideWhatWasMoved)
{
    TwoVolumes volumes;
    volumes.mFolder.MakeFile("f", "x");
    volumes.mCalls.Fail(Faults::kUnlink, 1, EACCES, Faults::kForEver);
    EXPECT_EQ(kSuccess, File::Move(volumes.mFolder.Path(u"f"), volumes.mFolder.Path(u"m")));
    EXPECT_EQ("x", ContentsOf(volumes.mFolder, "m"));
    EXPECT_EQ("x", ContentsOf(volumes.mFolder, "f"));
}

TEST(FileVolumes, ASource_GoesWhenItsCopyAndTheNameOfThatAreOnDisk)
{
    struct Row
    {
        const char* mName;
        unsigned mSync; // the number of the sync that fails
    };
    for (const Row& row : {Row{"file", 1}, Row{"file", 2}, Row{"link", 1}}) {
        TwoVolumes volumes;
        volumes.mFolder.MakeFile("file", "x");
        std::filesystem::create_symlink("nothing", volumes.mFolder.Host() / "link");
        const std::string name = row.mName;
        const UTF16String source = volumes.mFolder.Path(std::u16string(name.begin(), name.end()));
        volumes.mCalls.Fail(Faults::kFSync, row.mSync, EIO);
        EXPECT_EQ(kGeneralFailure, File::Move(source, volumes.mFolder.Path(u"moved"))) << name << row.mSync;
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::symlink_status(volumes.mFolder.Host() / name)));
    }
}

TEST(FileVolumes, IntoAFolderThatCannotBeRead_TheNameOfTheCopyIsSynced)
{
    for (const ::mode_t mode : {0644u, 0400u}) {
        TwoVolumes volumes;
        const TempFolder& folder = volumes.mFolder;
        folder.MakeFolder("dark");
        folder.MakeFile("f", "x");
        std::filesystem::create_symlink("nothing", folder.Host() / "link");
        RunUnprivileged(folder.Host(), [&] {
            EXPECT_EQ(0, ::chmod((folder.Host() / "f").c_str(), mode));
            EXPECT_EQ(0, ::chmod((folder.Host() / "dark").c_str(), 0300));
            EXPECT_EQ(kSuccess, File::Move(folder.Path(u"f"), folder.Path(u"dark\\f")));
            EXPECT_EQ(1u, volumes.mCalls.Count(Faults::kSyncVolume)) << mode;
            EXPECT_EQ(kSuccess, File::Move(folder.Path(u"link"), folder.Path(u"dark\\link")));
            return ::chmod((folder.Host() / "dark").c_str(), 0755) == 0;
        });
        EXPECT_EQ("x", ContentsOf(folder, "dark/f"));
        EXPECT_EQ("nothing", TargetOf(folder, "dark/link"));
        EXPECT_FALSE(std::filesystem::exists(folder.Host() / "f"));
    }
}

TEST(FileVolumes, IntoAFolderThatCannotBeRead_AFailedSyncKeepsTheSource)
{
    TwoVolumes volumes;
    const TempFolder& folder = volumes.mFolder;
    folder.MakeFolder("dark");
    folder.MakeFile("f", "x");
    RunUnprivileged(folder.Host(), [&] {
        EXPECT_EQ(0, ::chmod((folder.Host() / "dark").c_str(), 0300));
        volumes.mCalls.Fail(Faults::kSyncVolume, 1, EIO);
        EXPECT_EQ(kGeneralFailure, File::Move(folder.Path(u"f"), folder.Path(u"dark\\f")));
        return ::chmod((folder.Host() / "dark").c_str(), 0755) == 0;
    });
    EXPECT_EQ("x", ContentsOf(folder, "f"));
    EXPECT_FALSE(std::filesystem::exists(folder.Host() / "dark/f"));
}

TEST(FileVolumes, ACopyThatTheDiskRefusesAtItsClose_IsNoCopy)
{
    const TempFolder folder;
    folder.MakeFile("f", "x");
    Faults calls;
    calls.Fail(Faults::kClose, 1, ENOSPC);
    EXPECT_EQ(kDiskFull, File::Copy(folder.Path(u"f"), folder.Path(u"c")));
    EXPECT_EQ("<none>", ContentsOf(folder, "c"));
    calls.Fail(Faults::kClose, 1, EINTR);
    EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(u"c"))) << "an interruption says nothing of the file";
    EXPECT_EQ("x", ContentsOf(folder, "c"));
}

TEST(FileVolumes, BetweenTwoRealOnes_TheSameHolds)
{
    const std::filesystem::path memory = "/dev/shm";
    const TempFolder from;
    if (DeviceOf(memory) == 0 || DeviceOf(memory) == DeviceOf(from.Host())) {
        GTEST_SKIP() << "there is one volume only";
    }
    const TempFolder to(memory);
    from.MakeFile("f", "contents");
    from.MakeFolder("d");
    std::filesystem::create_symlink("f", from.Host() / "link");
    EXPECT_EQ(kSuccess, File::Move(from.Path(u"link"), to.Path(u"link")));
    EXPECT_EQ("f", TargetOf(to, "link"));
    EXPECT_EQ(kSuccess, File::Move(from.Path(u"f"), to.Path(u"f")));
    EXPECT_EQ("contents", ContentsOf(to, "f"));
    EXPECT_EQ("<none>", ContentsOf(from, "f"));
    EXPECT_EQ(kAccessDenied, File::Move(from.Path(u"d"), to.Path(u"d")));
    EXPECT_TRUE(std::filesystem::is_directory(from.Host() / "d"));
}
