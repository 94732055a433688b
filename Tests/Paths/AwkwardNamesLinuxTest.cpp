// Tests files on a real disk whose names no Windows path could contain.
#include <ORLHostPath.h>
#include <ORLPathUtils.h>

#include <Platform/Paths.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

using namespace ORL::PathUtils;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

const std::string kNames[] = {
    "plain.txt",
    "caf\xE9.mov",  // Latin-1
    "\xFF\xFE\x80", // invalid UTF-8
    "a\\b",         // a separator inside a name
    "C:",           // looks like a drive letter
    "what?*.wav",   // looks like a wildcard pattern
    "\"<|>\"",
    "ends in a blank ",
    "ends in a dot.",
    "...",
    " ",
    "line\nbreak\ttab\x01",
    "\xEF\x80\xBA", // contains a private unit that encodes a byte
    "\xEF\x83\xBF\xEF\x80\xAF",
    "\xED\xA0\x80\xED\xB0\x80",      // two adjacent encoded halves of a surrogate pair
    "\xF0\x9F\x8E\xAC \xE6\x97\xA5", // a clapper board
    std::string(255, '\xE9'),        // the longest name allowed
};

} // namespace

TEST(AwkwardNames, EachOnDisk_IsReachedByItsLibraryPathAndBack)
{
    const TempFolder folder;
    for (const std::string& name : kNames) {
        const std::string host = folder.Host().string() + "/" + name;
        std::ofstream(host) << "x";
        const UTF16String path = FromHostPath(host);
        for (const UTF16String& form : {path, ToNormalizedPath(path)}) {
            std::string back;
            EXPECT_EQ(ORL::kSuccess, ToHostPath(form, back)) << Show(form);
            EXPECT_EQ(host, back) << Show(form);
            EXPECT_TRUE(ExistsOnDisk(form)) << Show(form);
            EXPECT_FALSE(IsDirectory(form)) << Show(form);
            EXPECT_EQ(name[0] == '.', IsHidden(form)) << Show(form);
        }
        EXPECT_EQ(folder.Path() + Units(u"\\"), GetFullDirectoryPart(path)) << Show(path);
        EXPECT_TRUE(IsValidFileName(GetFullFilePart(path)) || name == " ") << Show(path);
    }
}

TEST(AwkwardNames, Folders_HoldFilesToo)
{
    const TempFolder folder;
    for (const std::string& name : kNames) {
        const std::string host = folder.Host().string() + "/" + name;
        ASSERT_EQ(0, ::mkdir(host.c_str(), 0777)) << name;
        const UTF16String path = FromHostPath(host);
        EXPECT_TRUE(IsDirectoryEmpty(path)) << Show(path);
        EXPECT_TRUE(PreparePathForWrite(path + Units(u"\\below\\"))) << Show(path);
        EXPECT_TRUE(IsDirectory(FromHostPath(host + "/below"))) << Show(path);
        EXPECT_FALSE(IsDirectoryEmpty(path)) << Show(path);
    }
}

TEST(AwkwardNames, APathOf4000Characters_IsReached)
{
    const TempFolder folder;
    UTF16String path = folder.Path();
    while (path.size() < 3800) {
        path += Units(u"\\") + UTF16String(99, 'n');
    }
    path += Units(u"\\") + UTF16String(4000 - path.size() - 1, 'x');
    ASSERT_EQ(4000u, path.size());
    EXPECT_TRUE(PreparePathForWrite(path + Units(u"\\")));
    for (const UTF16String& form : {path, ToNormalizedPath(path)}) {
        EXPECT_TRUE(ExistsOnDisk(form));
        EXPECT_TRUE(IsDirectoryEmpty(form));
    }
    EXPECT_FALSE(ExistsOnDisk(path + Units(u"\\") + UTF16String(200, 'y')));
    EXPECT_EQ(path, GetDisplayStringFromPath(ToNormalizedPath(path)));
}

// The file system decides whether names are case-sensitive; the usual ones on Linux are.
TEST(AwkwardNames, TheCaseOfAName_Counts)
{
    const TempFolder folder;
    folder.MakeFile("Clip.mov");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"Clip.mov")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"clip.mov")));
    folder.MakeFile("clip.mov");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"clip.mov")));
}

TEST(AwkwardNames, ADotAtTheBeginning_Hides)
{
    const TempFolder folder;
    folder.MakeFile(".rc");
    folder.MakeFolder(".cache/x");
    EXPECT_TRUE(IsHidden(folder.Path(u".rc")));
    EXPECT_TRUE(IsHidden(folder.Path(u".cache\\")));
    EXPECT_FALSE(IsHidden(folder.Path(u".cache\\x")));
    EXPECT_FALSE(IsHidden(Units(u"C:\\")));
}

TEST(AwkwardNames, ALinkThatLeadsNowhere_IsAnEntryButNoFolder)
{
    const TempFolder folder;
    std::filesystem::create_symlink("nowhere", folder.Host() / "link");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"link")));
    EXPECT_FALSE(IsDirectory(folder.Path(u"link")));
    EXPECT_FALSE(IsHidden(folder.Path(u"link")));
}

TEST(FileAttributes, ReadOnlyMeansThatNobodyMayWrite)
{
    using namespace Platform;
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFolder("d");
    const std::string file = (folder.Host() / "f").string();
    EXPECT_EQ(kAttributeNormal, GetFileAttributes_Impl(folder.Path(u"f")));
    EXPECT_EQ(kAttributeDirectory, GetFileAttributes_Impl(folder.Path(u"d")));
    ASSERT_EQ(0, ::chmod(file.c_str(), 0444));
    EXPECT_EQ(kAttributeReadOnly, GetFileAttributes_Impl(folder.Path(u"f")));
    ASSERT_EQ(0, ::chmod(file.c_str(), 0464));
    EXPECT_EQ(kAttributeNormal, GetFileAttributes_Impl(folder.Path(u"f")));
    EXPECT_EQ(kInvalidAttributes, GetFileAttributes_Impl(folder.Path(u"no")));
    EXPECT_EQ(kInvalidAttributes, GetFileAttributes_Impl(Units(u"Q:\\")));
}
