// Tests the DiskUtils functions that return the root, the limits and the free space of a path's volume.
#include <ORLDiskUtils.h>

#include <Files/VolumeQueries.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <filesystem>
#include <gtest/gtest.h>

using namespace ORL;
using namespace ORL::DiskUtils;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

TEST(GetVolumeRootPath, EachPath_HasItsRoot)
{
    struct Row
    {
        int mLine;
        const char16_t* mPath;
        const char16_t* mRoot;
    };
    const Row rows[] = {
        {__LINE__, uR"(C:\dir\file)", uR"(\\?\C:\)"},
        {__LINE__, uR"(\\server\share\dir\file)", uR"(\\?\UNC\server\share\)"},
        {__LINE__, uR"(\\server\share)", uR"(\\?\UNC\server\share\)"},
        {__LINE__, uR"(\\server\share\)", uR"(\\?\UNC\server\share\)"},
        {__LINE__, u"", u""},
        {__LINE__, u"C:", uR"(\\?\C:\)"},
        {__LINE__, uR"(\\?\C:)", uR"(\\?\C:\)"},
        {__LINE__, uR"(\\?\C:\dir\file)", uR"(\\?\C:\)"},
        {__LINE__, uR"(\\?\UNC\server\share\dir)", uR"(\\?\UNC\server\share\)"},
        // an extended path may have any character as its drive
        {__LINE__, uR"(\\?\1:\dir)", uR"(\\?\1:\)"},
        // the server name is empty, so components are dropped until the platform accepts the rest as a root
        {__LINE__, uR"(\\?\UNC\\share\x)", uR"(\\?\)"},
        // neither drive nor share: components are dropped until a root is left or nothing more can be dropped
        {__LINE__, u"relative", u"relative\\"},
        {__LINE__, uR"(relative\dir)", uR"(relative\)"},
        {__LINE__, uR"(\dir\file)", u""},
        {__LINE__, u"\\", u"\\"},
    };
    for (const Row& row : rows) {
        const UTF16String root = GetVolumeRootPath(Units(row.mPath));
        EXPECT_EQ(Units(row.mRoot), root) << "row at line " << row.mLine << ": " << Show(root);
    }
}

TEST(GetVolumeRootPath, OfEveryShortText_EndsAndGivesABackslashAtTheEndOrNothing)
{
    const char alphabet[] = "C:\\?U";
    for (unsigned number = 1; number < 15625; ++number) {
        UTF16String path;
        for (unsigned rest = number; rest != 0; rest /= 5) {
            path += static_cast<unsigned char>(alphabet[rest % 5]);
        }
        for (const UTF16String& text : {path, Units(uR"(\\?\UNC\)") + path, Units(uR"(\\)") + path}) {
            const UTF16String root = GetVolumeRootPath(text);
            // Only a path with a single leading backslash may have an empty root.
            const bool mayBeEmpty = text[0] == '\\' && text.size() > 1 && text[1] != '\\';
            ASSERT_TRUE(root.empty() ? mayBeEmpty : PathUtils::HasTrailingSlash(root)) << Show(text);
        }
    }
}

namespace {

constexpr unsigned __int64 kGiB = kSize_gigaByte;

unsigned __int64 sFree;
const char16_t* sName;
SystemError sFreeError;
SystemError sNameError;
UTF16String sAskedRoot;

SystemError FakeFreeSpace(const Platform::Volume& inVolume, unsigned __int64& outBytes)
{
    sAskedRoot = inVolume.mRoot;
    outBytes = sFree;
    return sFreeError;
}

SystemError FakeName(const Platform::Volume&, UTF16String& outName)
{
    outName = Units(sName);
    return sNameError;
}

unsigned __int64 MaxFileSize(unsigned __int64 inFree, const char16_t* inName)
{
    sFree = inFree;
    sName = inName;
    sFreeError = 0;
    sNameError = 0;
    unsigned __int64 size = 77;
    EXPECT_EQ(kSuccess, GetMaxFileSize(Units(uR"(C:\dir\file)"), size, {&FakeFreeSpace, &FakeName}));
    EXPECT_EQ(Units(uR"(\\?\C:\)"), sAskedRoot);
    return size;
}

} // namespace

TEST(GetMaxFileSize, OnAFATVolume_IsLimited)
{
    EXPECT_EQ(4294967295u, MaxFileSize(5 * kGiB, u"FAT32"));
    EXPECT_EQ(1 * kGiB, MaxFileSize(1 * kGiB, u"FAT32"));
    EXPECT_EQ(4294967295u, MaxFileSize(5 * kGiB, u"FAT"));
    EXPECT_EQ(4294967295u, MaxFileSize(4294967296u, u"FATX"));
    EXPECT_EQ(4294967295u, MaxFileSize(4294967295u, u"NTFS"));
}

TEST(GetMaxFileSize, OnAnyOtherVolume_IsTheFreeSpace)
{
    for (const char16_t* name : {u"NTFS", u"ext4", u"exFAT", u"fat32", u"FA", u""}) {
        EXPECT_EQ(5 * kGiB, MaxFileSize(5 * kGiB, name)) << Show(Units(name));
    }
}

TEST(GetMaxFileSize, WhereTheSystemFails_LeavesTheSize)
{
    const VolumeQueries queries{&FakeFreeSpace, &FakeName};
    unsigned __int64 size = 77;
    sFree = 5 * kGiB;
    sName = u"FAT";
    sFreeError = 3;
    EXPECT_EQ(kPathNotFound, GetMaxFileSize(Units(u"C:\\x"), size, queries));
    sFreeError = 0;
    sNameError = 5;
    EXPECT_EQ(kAccessDenied, GetMaxFileSize(Units(u"C:\\x"), size, queries));
    EXPECT_EQ(77u, size);
    // free space below 4 GiB is the limit on every file system, so the name is not queried
    sFree = kGiB;
    EXPECT_EQ(kSuccess, GetMaxFileSize(Units(u"C:\\x"), size, queries));
    EXPECT_EQ(kGiB, size);
}

TEST(DiskUtils, OfTheTempFolder_AgreeWithTheSystem)
{
    const TempFolder folder;
    const auto space = std::filesystem::space(folder.Host());
    const auto near = [](unsigned __int64 inLeft, unsigned __int64 inRight) {
        return (inLeft > inRight ? inLeft - inRight : inRight - inLeft) < kGiB;
    };
    const unsigned __int64 free = GetFreeSpaceFromPath(folder.Path());
    EXPECT_TRUE(near(space.available, free)) << space.available << ' ' << free;
    EXPECT_TRUE(near(free, PathUtils::GetFreeDriveSpace(folder.Path(u"no\\such\\file"))));
    unsigned __int64 size = 0;
    EXPECT_EQ(kSuccess, GetMaxFileSize(folder.Path(u"new.mov"), size));
    EXPECT_LE(size, free + kGiB);
    unsigned int sector = 0;
    EXPECT_EQ(kSuccess, GetEfficientDiskBufferSizeFromPath(folder.Path(), sector));
    EXPECT_LE(512u, sector);
    EXPECT_EQ(0u, sector & (sector - 1)) << "a power of two";
    UTF16String name;
    EXPECT_EQ(kSuccess, GetFileSystemName(Units(u"C:\\"), name));
    EXPECT_FALSE(name.empty());
}

TEST(DiskUtils, OfAMissingDrive_Fail)
{
    const UTF16String path = Units(uR"(Q:\x)");
    EXPECT_EQ(0u, GetFreeSpaceFromPath(path));
    unsigned int sector = 77;
    EXPECT_EQ(kPathNotFound, GetEfficientDiskBufferSizeFromPath(path, sector));
    EXPECT_EQ(0u, sector) << "written on failure too";
    unsigned __int64 size = 77;
    EXPECT_EQ(kPathNotFound, GetMaxFileSize(path, size));
    EXPECT_EQ(77u, size);
    UTF16String name = Units(u"untouched");
    EXPECT_EQ(kPathNotFound, GetFileSystemName(path, name));
    EXPECT_EQ(Units(u"untouched"), name);
    EXPECT_EQ(0u, GetFreeSpaceFromPath(UTF16String()));
}
