// Tests the PathUtils functions that query the file system.
#include <ORLPathUtils.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Files/PathForms.h>
#include <Platform/Paths.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>

using namespace ORL::PathUtils;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

TEST(ExistsOnDisk, FilesFoldersAndRoots_Exist)
{
    const TempFolder folder;
    folder.MakeFile("f.txt");
    folder.MakeFolder("dir");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"f.txt")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"dir")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"dir\\")));
    EXPECT_TRUE(ExistsOnDisk(ToNormalizedPath(folder.Path(u"dir\\"))));
    EXPECT_TRUE(ExistsOnDisk(Units(u"C:\\")));
    EXPECT_TRUE(ExistsOnDisk(Units(u"C:")));
    EXPECT_TRUE(ExistsOnDisk(Units(uR"(\\?\C:)")));
}

TEST(ExistsOnDisk, WhatIsNotThere_DoesNot)
{
    const TempFolder folder;
    folder.MakeFile("f.txt");
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"g.txt")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"no\\f.txt")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"f.txt\\g")));
    EXPECT_FALSE(ExistsOnDisk(Units(u"Q:\\")));
    EXPECT_FALSE(ExistsOnDisk(Units(uR"(\\nosuch.invalid\share\x)")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"f|.txt")));
}

// Without its trailing backslash the path is empty, and an empty path violates the input contract.
TEST(ExistsOnDisk, OfABackslashAlone_FiresTheInputContract)
{
    CheckRecorder recorder;
    EXPECT_FALSE(ExistsOnDisk(Units(u"\\")));
    ASSERT_EQ(1u, recorder.Reports(CheckReport::kContract).size());
    ExpectReport(recorder.Reports(CheckReport::kContract)[0]).Expression("IsValidPath(inFullPath)");
}

// One trailing backslash is dropped before the lookup, so a file is also found with one.
TEST(ExistsOnDisk, OfAFileWithATrailingBackslash_FindsIt)
{
    const TempFolder folder;
    folder.MakeFile("f.txt");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"f.txt\\")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"f.txt\\\\")));
}

TEST(ExistsOnDisk, APattern_ExistsWhereAnEntryFits)
{
    const TempFolder folder;
    folder.MakeFile("clip.mov");
    folder.MakeFolder("empty");
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"*")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"*.*")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"*.mov")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"c*p.m?v")));
    EXPECT_TRUE(ExistsOnDisk(folder.Path(u"empty\\*")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"*.wav")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"c*x")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"?lip")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"no\\*")));
    EXPECT_FALSE(ExistsOnDisk(folder.Path(u"*\\clip.mov")));
}

// Each query returns false for a path that is not rooted, even for ".", which always exists.
TEST(PathQueries, OfARelativePath_AreFalse)
{
    for (const char16_t* path : {u".", u"..", u"x"}) {
        EXPECT_FALSE(ExistsOnDisk(Units(path)));
        EXPECT_FALSE(IsDirectory(Units(path)));
        EXPECT_FALSE(IsDirectoryEmpty(Units(path)));
        EXPECT_FALSE(IsHidden(Units(path)));
        EXPECT_FALSE(PreparePathForWrite(Units(path)));
    }
}

TEST(PathQueries, OfAnEmptyPath_ReportTheirSite)
{
    CheckRecorder recorder;
    EXPECT_FALSE(ExistsOnDisk(UTF16String()));
    EXPECT_FALSE(IsDirectory(UTF16String()));
    EXPECT_FALSE(IsDirectoryEmpty(UTF16String()));
    EXPECT_FALSE(IsHidden(UTF16String()));
    const auto asserts = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(2u, asserts.size());
    ExpectReport(asserts[0]).Function("ORL::PathUtils::ExistsOnDisk");
    ExpectReport(asserts[1]).Function("ORL::PathUtils::IsDirectory");
    for (const CheckReport& report : asserts) {
        ExpectReport(report).Expression("IsValidPath(inFullPath)").File("WinPathUtils").Message("");
    }
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("IsValidPath(inFullPath)").File("WinPathUtils");
}

TEST(IsDirectory, KnowsFoldersFromFiles)
{
    const TempFolder folder;
    folder.MakeFile("f.txt");
    folder.MakeFolder("dir");
    EXPECT_TRUE(IsDirectory(folder.Path(u"dir")));
    EXPECT_TRUE(IsDirectory(folder.Path(u"dir\\")));
    EXPECT_TRUE(IsDirectory(ToNormalizedPath(folder.Path(u"dir"))));
    EXPECT_TRUE(IsDirectory(Units(u"C:")));
    EXPECT_TRUE(IsDirectory(Units(u"C:\\")));
    EXPECT_FALSE(IsDirectory(folder.Path(u"f.txt")));
    EXPECT_FALSE(IsDirectory(folder.Path(u"no")));
    EXPECT_FALSE(IsDirectory(Units(u"Q:\\")));
}

// The path is passed to the OS in extended form, in which a slash is part of a name.
TEST(IsDirectory, OfAPathWithSlashes_IsFalse)
{
    const TempFolder folder;
    folder.MakeFolder("a/b");
    EXPECT_TRUE(IsDirectory(folder.Path(u"a\\b")));
    EXPECT_FALSE(IsDirectory(folder.Path(u"a/b")));
}

TEST(IsDirectoryEmpty, HiddenEntriesCount)
{
    const TempFolder folder;
    folder.MakeFolder("empty");
    folder.MakeFolder("full");
    folder.MakeFile("full/f");
    folder.MakeFolder("hidden");
    folder.MakeFile("hidden/.h");
    folder.MakeFolder("nested/empty");
    EXPECT_TRUE(IsDirectoryEmpty(folder.Path(u"empty")));
    EXPECT_TRUE(IsDirectoryEmpty(folder.Path(u"empty\\")));
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"full")));
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"hidden")));
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"nested")));
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"full\\f")));
    EXPECT_FALSE(IsDirectoryEmpty(folder.Path(u"no")));
    EXPECT_FALSE(IsDirectoryEmpty(Units(u"C:\\")));
}

TEST(IsHidden, OfARootedPathThatDoesNotExist_IsTrue)
{
    const TempFolder folder;
    folder.MakeFile("f.txt");
    EXPECT_TRUE(IsHidden(folder.Path(u"no")));
    EXPECT_FALSE(IsHidden(folder.Path(u"f.txt")));
    EXPECT_FALSE(IsHidden(folder.Path()));
}

TEST(PreparePathForWrite, MakesWhatIsMissing)
{
    const TempFolder folder;
    folder.MakeFolder("there");
    folder.MakeFile("file");
    EXPECT_TRUE(PreparePathForWrite(folder.Path(u"there\\")));
    EXPECT_TRUE(PreparePathForWrite(folder.Path(u"new\\")));
    EXPECT_TRUE(IsDirectory(folder.Path(u"new")));
    EXPECT_TRUE(PreparePathForWrite(folder.Path(u"a\\b\\c\\")));
    EXPECT_TRUE(IsDirectory(folder.Path(u"a\\b\\c")));
    EXPECT_TRUE(PreparePathForWrite(ToNormalizedPath(folder.Path(u"d\\e\\"))));
    EXPECT_TRUE(IsDirectory(folder.Path(u"d\\e")));
    EXPECT_FALSE(PreparePathForWrite(folder.Path(u"file\\")));
    EXPECT_FALSE(PreparePathForWrite(folder.Path(u"file\\below\\")));
    EXPECT_FALSE(PreparePathForWrite(Units(u"Q:\\x\\")));
}

TEST(PreparePathForWrite, WithoutATrailingBackslash_ReportsAndGoesOn)
{
    const TempFolder folder;
    CheckRecorder recorder;
    EXPECT_TRUE(PreparePathForWrite(folder.Path(u"new")));
    EXPECT_TRUE(IsDirectory(folder.Path(u"new")));
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Expression("HasTrailingSlash(inPath)")
        .File("WinPathUtils")
        .Function("ORL::PathUtils::PreparePathForWrite");
}

TEST(MakeUniqueFilename, CountsUpFromOne)
{
    const TempFolder folder;
    EXPECT_EQ(folder.Path(u"f.txt"), MakeUniqueFilename(folder.Path(u"f.txt")));
    folder.MakeFile("f.txt");
    EXPECT_EQ(folder.Path(u"f_1.txt"), MakeUniqueFilename(folder.Path(u"f.txt")));
    folder.MakeFile("f_1.txt");
    EXPECT_EQ(folder.Path(u"f_2.txt"), MakeUniqueFilename(folder.Path(u"f.txt")));
    for (int i = 2; i <= 11; ++i) {
        folder.MakeFile("f_" + std::to_string(i) + ".txt");
    }
    EXPECT_EQ(folder.Path(u"f_12.txt"), MakeUniqueFilename(folder.Path(u"f.txt")));
}

TEST(MakeUniqueFilename, OfANameThatEndsInANumber_NumbersItAnew)
{
    const TempFolder folder;
    folder.MakeFile("name_7.txt");
    EXPECT_EQ(folder.Path(u"name_7_1.txt"), MakeUniqueFilename(folder.Path(u"name_7.txt")));
    folder.MakeFile("name_7_1.txt");
    EXPECT_EQ(folder.Path(u"name_7_2.txt"), MakeUniqueFilename(folder.Path(u"name_7.txt")));
}

TEST(MakeUniqueFilename, OfAFolderOrAnExtensionAlone_KeepsTheParts)
{
    const TempFolder folder;
    folder.MakeFolder("dir");
    folder.MakeFile(".rc");
    EXPECT_EQ(folder.Path(u"dir_1"), MakeUniqueFilename(folder.Path(u"dir")));
    EXPECT_EQ(folder.Path(u"_1.rc"), MakeUniqueFilename(folder.Path(u".rc")));
}

namespace {

// Fakes an OS whose temporary directory has a path of a given length.
UTF16String sTempFolder;
unsigned long sSecondAnswer;
unsigned long sSizes[2];
int sCalls;

unsigned long FakeGetTempPath(unsigned long inSize, unsigned short* outBuffer)
{
    sSizes[sCalls++ % 2] = inSize;
    if (sCalls == 2) {
        outBuffer[0] = 'z';
        return sSecondAnswer;
    }
    if (sTempFolder.size() >= inSize) {
        return static_cast<unsigned long>(sTempFolder.size() + 1);
    }
    sTempFolder.copy(outBuffer, sTempFolder.size());
    outBuffer[sTempFolder.size()] = 0;
    return static_cast<unsigned long>(sTempFolder.size());
}

void FakeTempFolder(std::size_t inSize, unsigned long inSecondAnswer)
{
    sTempFolder = Units(u"C:\\") + UTF16String(inSize - 3, 't');
    sSecondAnswer = inSecondAnswer;
    sCalls = 0;
}

} // namespace

TEST(GetTempDirectory, IsAFolderWithItsBackslash)
{
    const UTF16String folder = GetTempDirectory();
    EXPECT_TRUE(HasTrailingSlash(folder)) << Show(folder);
    EXPECT_TRUE(IsDirectory(folder)) << Show(folder);
}

TEST(GetTempDirectory, Of511Units_FitsTheFirstBuffer)
{
    FakeTempFolder(511, 0);
    EXPECT_EQ(sTempFolder, GetTempDirectoryFrom(&FakeGetTempPath));
    EXPECT_EQ(1, sCalls);
    EXPECT_EQ(512u, sSizes[0]);
}

TEST(GetTempDirectory, OfMoreThan512Units_ReportsAndIsEmpty)
{
    FakeTempFolder(600, 600);
    CheckRecorder recorder;
    EXPECT_EQ(UTF16String(), GetTempDirectoryFrom(&FakeGetTempPath));
    EXPECT_EQ(2, sCalls);
    EXPECT_EQ(601u, sSizes[1]);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Expression("false")
        .Message("Could not get the current temporary directory!")
        .File("WinPathUtils")
        .Function("ORL::PathUtils::GetTempDirectory");
}

// The function treats a failure (0) of the second query as success, and then returns the contents of the buffer.
TEST(GetTempDirectory, WhoseSecondQuestionFails_TakesTheBuffer)
{
    FakeTempFolder(600, 0);
    CheckRecorder recorder;
    EXPECT_EQ(Units(u"z"), GetTempDirectoryFrom(&FakeGetTempPath));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(GetTempDirectory, OfASystemThatFailsAtOnce_IsEmpty)
{
    EXPECT_EQ(UTF16String(), GetTempDirectoryFrom([](unsigned long, unsigned short*) { return 0ul; }));
}
