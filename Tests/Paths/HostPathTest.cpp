// Tests the conversion between host paths and library paths on both platforms.
#include <ORLHostPath.h>

#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

using namespace ORL::PathUtils;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

TEST(HostPath, OfAFile_LeadsToItsLibraryPathAndBack)
{
    const TempFolder folder;
    folder.MakeFolder("clips");
    const UTF16String path = FromHostPath((folder.Host() / "clips").u8string());
    EXPECT_TRUE(IsDirectory(path)) << Show(path);
    EXPECT_FALSE(IsNormalizedPath(path)) << "the plain form";
    for (const UTF16String& form : {path, ToNormalizedPath(path)}) {
        std::string host;
        EXPECT_EQ(ORL::kSuccess, ToHostPath(form, host));
        EXPECT_TRUE(std::filesystem::equivalent(folder.Host() / "clips", std::filesystem::u8path(host))) << host;
    }
}

TEST(HostPath, NamesBeyondASCII_AreUTF8)
{
    const TempFolder folder;
    const std::string name = "caf\xC3\xA9 \xE6\x97\xA5\xF0\x9F\x98\x80";
    const UTF16String path = FromHostPath(folder.Host().u8string() + "/" + name);
    EXPECT_EQ(Units(u"caf\u00E9 \u65E5\U0001F600"), GetFullFilePart(path)) << Show(path);
    std::string host;
    EXPECT_EQ(ORL::kSuccess, ToHostPath(path, host));
    EXPECT_EQ(name, host.substr(host.size() - name.size()));
}

TEST(HostPath, ARelativePath_StartsInTheCurrentFolder)
{
    const UTF16String current = FromHostPath(".");
    EXPECT_TRUE(IsDirectory(current)) << Show(current);
    EXPECT_EQ(AddTrailingSlash(current) + Units(u"x"), FromHostPath("x"));
}

TEST(HostPath, OfAnEmptyText_IsEmptyOrFails)
{
    EXPECT_EQ(UTF16String(), FromHostPath(""));
    std::string host = "untouched";
    EXPECT_EQ(ORL::kPathNotFound, ToHostPath(UTF16String(), host));
    EXPECT_EQ("untouched", host);
}

TEST(GetMountPoints, HoldTheDriveOfTheTempFolder)
{
    const auto list = GetMountPoints();
    const UTF16String root = GetDrivePart(GetTempDirectory()) + Units(u"\\");
    EXPECT_TRUE(std::any_of(list.begin(), list.end(), [&root](const MountPoint& inPoint) {
        return inPoint.mRoot == root && !inPoint.mHostFolder.empty();
    })) << Show(root);
}
