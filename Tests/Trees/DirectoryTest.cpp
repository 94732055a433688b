#include <ORLDirectory.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

constexpr unsigned int kNoLimit = Directory::kNoLimit;

UTF16String Extended(const UTF16String& inPath)
{
    return Units(u"\\\\?\\") + inPath;
}

class DirectoryTest : public testing::Test
{
protected:
    UTF16String Base() const { return mFolder.Path(); }
    Directory Object() const { return Directory::ConstructDirectory(Base()); }

    std::vector<UTF16String> Paths(bool inRecursive, unsigned int inLimit = kNoLimit) const
    {
        std::vector<UTF16String> paths{Units(u"old")};
        Object().GetContainedPaths(paths, inRecursive, inLimit);
        return paths;
    }

    /// Returns the sorted paths relative to the folder, with "/" as separator.
    std::vector<std::string> Names(const std::vector<UTF16String>& inPaths) const
    {
        std::vector<std::string> names;
        for (const UTF16String& path : inPaths) {
            EXPECT_EQ(Base() + UTF16String(1, '\\'), path.substr(0, Base().size() + 1)) << Show(path);
            std::string name = Show(path.substr(std::min(path.size(), Base().size() + 1)));
            std::replace(name.begin(), name.end(), '\\', '/');
            names.push_back(name);
        }
        return names;
    }

    std::vector<std::string> Sorted(const std::vector<UTF16String>& inPaths) const
    {
        std::vector<std::string> names = Names(inPaths);
        std::sort(names.begin(), names.end());
        return names;
    }

    TempFolder mFolder;
};

using Strings = std::vector<std::string>;

} // namespace

TEST_F(DirectoryTest, Construct_OfAFile_Throws)
{
    mFolder.MakeFile("f");
    try {
        Directory::ConstructDirectory(mFolder.Path(u"f"));
        FAIL() << "a file is no directory";
    } catch (const eNotADirectoryPath& error) {
        EXPECT_STREQ("Directory object cannot construct with this path.", error.what());
    }
    EXPECT_THROW(Directory::ConstructDirectory(mFolder.Path(u"missing")), eNotADirectoryPath);
    EXPECT_THROW(Directory::ConstructDirectory(Units(u"relative")), eNotADirectoryPath);
}

TEST_F(DirectoryTest, Construct_KeepsTheTextAsItIs)
{
    for (const UTF16String& path : {Base(), Base() + Units(u"\\"), Extended(Base()), Extended(Base()) + Units(u"\\")}) {
        EXPECT_EQ(path, Directory::ConstructDirectory(path).AsString()) << Show(path);
    }
}

TEST_F(DirectoryTest, IsDirectory_AnswersAsThePathFunction)
{
    mFolder.MakeFile("f");
    EXPECT_TRUE(Directory::IsDirectory(Base()));
    EXPECT_FALSE(Directory::IsDirectory(mFolder.Path(u"f")));
    EXPECT_FALSE(Directory::IsDirectory(mFolder.Path(u"missing")));
}

TEST_F(DirectoryTest, IsDirectoryEmpty_CountsHiddenEntries)
{
    EXPECT_TRUE(Object().IsDirectoryEmpty());
    mFolder.MakeFile(".hidden");
    EXPECT_FALSE(Object().IsDirectoryEmpty());
}

TEST_F(DirectoryTest, GoneSinceConstruction_ThrowsOutOfEveryQuery)
{
    mFolder.MakeFolder("d");
    const Directory directory = Directory::ConstructDirectory(mFolder.Path(u"d"));
    std::filesystem::remove(mFolder.Host() / "d");
    std::vector<UTF16String> paths{Units(u"old")};
    std::vector<Directory> directories;
    try {
        directory.GetContainedPaths(paths, false, kNoLimit);
        FAIL() << "the directory is gone";
    } catch (const eDirectoryNoLongerValid& error) {
        EXPECT_STREQ("Directory no longer exists.", error.what());
    }
    EXPECT_EQ(1u, paths.size()) << "a listing that does not begin leaves the list as it was";
    EXPECT_THROW(directory.IsDirectoryEmpty(), eDirectoryNoLongerValid);
    EXPECT_THROW(directory.GetContainedFileAndDirectoryPaths(paths, directories, true, kNoLimit),
                 eDirectoryNoLongerValid);
    EXPECT_TRUE(paths.empty());
    EXPECT_THROW(directory.GetContainedFilePaths(paths, true, kNoLimit), eDirectoryNoLongerValid);
    EXPECT_THROW(directory.GetContainedFilePaths(Units(u".wav"), paths, true, kNoLimit), eDirectoryNoLongerValid);
    EXPECT_FALSE(directory.IsDirectoryWriteable());
}

TEST_F(DirectoryTest, ListingOfAnEmptyDirectory_IsEmpty)
{
    EXPECT_TRUE(Paths(false).empty());
    EXPECT_TRUE(Paths(true).empty());
}

TEST_F(DirectoryTest, Listing_HoldsFilesAndDirectories)
{
    mFolder.MakeFile("a.wav");
    mFolder.MakeFile(".hidden");
    mFolder.MakeFolder("d");
    mFolder.MakeFile("d/b.wav");
    EXPECT_EQ((Strings{".hidden", "a.wav", "d"}), Sorted(Paths(false)));
    EXPECT_EQ((Strings{".hidden", "a.wav", "d", "d/b.wav"}), Sorted(Paths(true)));
}

TEST_F(DirectoryTest, RecursiveListing_ADirectoryFollowsWhatItHolds)
{
    mFolder.MakeFolder("d/e");
    mFolder.MakeFile("d/e/f");
    mFolder.MakeFile("d/g");
    mFolder.MakeFile("h");
    const Strings names = Names(Paths(true));
    ASSERT_EQ(5u, names.size());
    const auto at = [&names](const char* inName) {
        return std::find(names.begin(), names.end(), inName) - names.begin();
    };
    EXPECT_LT(at("d/e/f"), at("d/e"));
    EXPECT_LT(at("d/e"), at("d"));
    EXPECT_LT(at("d/g"), at("d"));
}

TEST_F(DirectoryTest, Limit0_LeavesTheListEmpty)
{
    mFolder.MakeFile("a");
    mFolder.MakeFolder("d");
    EXPECT_TRUE(Paths(false, 0).empty());
    EXPECT_TRUE(Paths(true, 0).empty());
}

TEST_F(DirectoryTest, Limit2_GivesTheFirstTwo)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        mFolder.MakeFile(name);
    }
    const std::vector<UTF16String> all = Paths(false);
    ASSERT_EQ(4u, all.size());
    EXPECT_EQ(std::vector<UTF16String>(all.begin(), all.begin() + 2), Paths(false, 2));
    EXPECT_EQ(all, Paths(false, 4));
    EXPECT_EQ(all, Paths(false, 5));
}

TEST_F(DirectoryTest, LimitUsedUpBelow_StillListsTheDirectoriesOnTheWay)
{
    mFolder.MakeFolder("d/e");
    mFolder.MakeFile("d/e/f1");
    mFolder.MakeFile("d/e/f2");
    const Strings names = Names(Paths(true, 1));
    ASSERT_EQ(3u, names.size());
    EXPECT_EQ("d/e/f", names[0].substr(0, 5));
    EXPECT_EQ("d/e", names[1]);
    EXPECT_EQ("d", names[2]);
}

TEST_F(DirectoryTest, Listing_KeepsTheFormOfThePath)
{
    mFolder.MakeFolder("d");
    mFolder.MakeFile("d/f");
    for (const UTF16String& path : {Base(), Base() + Units(u"\\"), Extended(Base()), Extended(Base()) + Units(u"\\")}) {
        std::vector<UTF16String> paths;
        Directory::ConstructDirectory(path).GetContainedPaths(paths, true, kNoLimit);
        const UTF16String stem = PathUtils::AddTrailingSlash(path);
        EXPECT_EQ((std::vector<UTF16String>{stem + Units(u"d\\f"), stem + Units(u"d")}), paths) << Show(path);
    }
}

TEST_F(DirectoryTest, FilesAndDirectories_AreSorted)
{
    mFolder.MakeFolder("d/empty");
    mFolder.MakeFile("d/f");
    mFolder.MakeFile("g");
    std::vector<UTF16String> files{Units(u"old")};
    std::vector<Directory> directories{Object()};
    Object().GetContainedFileAndDirectoryPaths(files, directories, true, kNoLimit);
    EXPECT_EQ((Strings{"d/f", "g"}), Sorted(files));
    ASSERT_EQ(2u, directories.size());
    EXPECT_EQ((Strings{"d/empty", "d"}), Names({directories[0].AsString(), directories[1].AsString()}));
    Object().GetContainedFileAndDirectoryPaths(files, directories, false, kNoLimit);
    EXPECT_EQ((Strings{"g"}), Sorted(files));
    EXPECT_EQ(1u, directories.size());
    Object().GetContainedFilePaths(files, true, kNoLimit);
    EXPECT_EQ((Strings{"d/f", "g"}), Sorted(files));
}

TEST_F(DirectoryTest, FilesAndDirectories_OfAnEmptyOneAreEmptied)
{
    std::vector<UTF16String> files{Units(u"old")};
    std::vector<Directory> directories{Object()};
    Object().GetContainedFileAndDirectoryPaths(files, directories, true, kNoLimit);
    EXPECT_TRUE(files.empty());
    EXPECT_TRUE(directories.empty());
}

TEST_F(DirectoryTest, Filter_IgnoresCaseAndWantsItsDot)
{
    for (const char* name : {"a.MOV", "b.mov", "noext", "c.mo", "d.mov.bak", ".mov"}) {
        mFolder.MakeFile(name);
    }
    std::vector<UTF16String> files{Units(u"old")};
    Object().GetContainedFilePaths(Units(u".mov"), files, true, kNoLimit);
    EXPECT_EQ((Strings{".mov", "a.MOV", "b.mov"}), Sorted(files)) << "a name that begins with its dot is all extension";
    Object().GetContainedFilePaths(Units(u".MoV"), files, true, kNoLimit);
    EXPECT_EQ(3u, files.size());
    Object().GetContainedFilePaths(Units(u"mov"), files, true, kNoLimit);
    EXPECT_TRUE(files.empty());
}

TEST_F(DirectoryTest, Filter_CountsWhatItDropsForTheLimit)
{
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        mFolder.MakeFile(name);
    }
    std::vector<UTF16String> files;
    Object().GetContainedFilePaths(Units(u".mov"), files, false, 1);
    EXPECT_TRUE(files.empty());
    Object().GetContainedFilePaths(Units(u".txt"), files, false, 1);
    EXPECT_EQ(1u, files.size());
}

TEST_F(DirectoryTest, EmptyFilter_BreaksTheContract)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    std::vector<UTF16String> files{Units(u"old")};
    EXPECT_THROW(Object().GetContainedFilePaths(UTF16String(), files, true, kNoLimit), CheckRecorder::ContractError);
    EXPECT_EQ(1u, files.size());
    const auto reports = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("!inFilterExtension.empty()").File("Directory");
}

TEST_F(DirectoryTest, IsDirectoryWriteable_LeavesNoProbe)
{
    EXPECT_TRUE(Object().IsDirectoryWriteable());
    EXPECT_TRUE(Directory::ConstructDirectory(Base() + Units(u"\\")).IsDirectoryWriteable());
    EXPECT_TRUE(Directory::ConstructDirectory(Extended(Base())).IsDirectoryWriteable());
    EXPECT_TRUE(Paths(false).empty());
}

TEST_F(DirectoryTest, IsReadOnly_OfDirectoriesFilesAndWhatIsMissing)
{
    mFolder.MakeFile("f");
    mFolder.MakeFile("locked");
    std::filesystem::permissions(mFolder.Host() / "locked", std::filesystem::perms::owner_read);
    EXPECT_FALSE(PathUtils::IsReadOnly(Base()));
    EXPECT_FALSE(PathUtils::IsReadOnly(mFolder.Path(u"f")));
    EXPECT_FALSE(PathUtils::IsReadOnly(Extended(mFolder.Path(u"f"))));
    EXPECT_TRUE(PathUtils::IsReadOnly(mFolder.Path(u"locked")));
    EXPECT_TRUE(PathUtils::IsReadOnly(Extended(mFolder.Path(u"locked"))));
    EXPECT_TRUE(PathUtils::IsReadOnly(mFolder.Path(u"missing"))) << "rooted, and cannot be read";
    EXPECT_FALSE(PathUtils::IsReadOnly(Units(u"relative\\f")));
    std::filesystem::permissions(mFolder.Host() / "locked", std::filesystem::perms::owner_all);
}

TEST_F(DirectoryTest, IsReadOnly_OfAnEmptyPath_IsReportedAndFalse)
{
    CheckRecorder recorder;
    EXPECT_FALSE(PathUtils::IsReadOnly(UTF16String()));
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_LE(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("IsValidPath(inFullPath)").File("WinPathUtils");
}

TEST_F(DirectoryTest, IsReadOnly_DropsOneSeparatorOfANormalizedPath)
{
    mFolder.MakeFile("f");
    EXPECT_FALSE(PathUtils::IsReadOnly(Extended(mFolder.Path(u"f")) + Units(u"\\")));
}

TEST_F(DirectoryTest, CreateOnDisk_MakesAllThatIsMissing)
{
    EXPECT_EQ(kSuccess, Directory::CreateOnDisk(mFolder.Path(u"a\\b\\c"), false));
    EXPECT_TRUE(Directory::IsDirectory(mFolder.Path(u"a\\b\\c")));
    EXPECT_EQ(kSuccess, Directory::CreateOnDisk(mFolder.Path(u"a\\b\\c"), true)) << "it is there already";
    EXPECT_EQ(kSuccess, Directory::CreateOnDisk(Extended(mFolder.Path(u"a\\d\\")), true));
    EXPECT_TRUE(Directory::IsDirectory(mFolder.Path(u"a\\d")));
}

// No result code corresponds to the status of the path service.
TEST_F(DirectoryTest, CreateOnDisk_WhereItCannotBe_IsAGeneralFailure)
{
    mFolder.MakeFile("f");
    EXPECT_EQ(kGeneralFailure, Directory::CreateOnDisk(mFolder.Path(u"f"), false));
    EXPECT_EQ(kGeneralFailure, Directory::CreateOnDisk(mFolder.Path(u"f\\below"), false));
    EXPECT_EQ(kGeneralFailure, Directory::CreateOnDisk(Units(u"Q:\\nowhere"), false));
}

TEST_F(DirectoryTest, Delete_RemovesAnEmptyDirectory)
{
    mFolder.MakeFolder("a");
    mFolder.MakeFolder("b");
    EXPECT_EQ(kSuccess, Directory::Delete(mFolder.Path(u"a")));
    EXPECT_EQ(kSuccess, Directory::Delete(Extended(mFolder.Path(u"b\\"))));
    EXPECT_TRUE(Object().IsDirectoryEmpty());
}

TEST_F(DirectoryTest, Delete_ThatFails_GivesTheSystemsError)
{
    mFolder.MakeFolder("full");
    mFolder.MakeFile("full/f");
    // No result code corresponds to the errors 145 (not empty) and 267 (not a directory).
    EXPECT_EQ(kGeneralFailure, Directory::Delete(mFolder.Path(u"full")));
    EXPECT_EQ(kGeneralFailure, Directory::Delete(mFolder.Path(u"full\\f")));
    EXPECT_EQ(kFileNotFound, Directory::Delete(mFolder.Path(u"missing")));
    EXPECT_EQ(kPathNotFound, Directory::Delete(mFolder.Path(u"missing\\below")));
    EXPECT_TRUE(Directory::IsDirectory(mFolder.Path(u"full")));
}

TEST_F(DirectoryTest, Copies_AreIndependentValues)
{
    mFolder.MakeFolder("d");
    std::vector<Directory> directories{Object(), Directory::ConstructDirectory(mFolder.Path(u"d"))};
    directories[0] = directories[1];
    EXPECT_EQ(mFolder.Path(u"d"), directories[0].AsString());
}
