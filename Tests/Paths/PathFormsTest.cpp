// Tests the forms of a path and the conversions between them.
#include <ORLPathUtils.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Files/PathForms.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

using namespace ORL::PathUtils;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Show;
using ORLTest::Units;

namespace {

struct Row
{
    int mLine;
    const char16_t* mPath;
    const char16_t* mExpected;
};

} // namespace

TEST(ToNormalizedPath, EachForm_BecomesExtended)
{
    const Row rows[] = {
        {__LINE__, u"C:", uR"(\\?\C:\)"},
        {__LINE__, uR"(C:\x)", uR"(\\?\C:\x)"},
        {__LINE__, uR"(\\s\h\x)", uR"(\\?\UNC\s\h\x)"},
        {__LINE__, uR"(relative\x)", uR"(relative\x)"},
        {__LINE__, uR"(\\?\C:\x)", uR"(\\?\C:\x)"},
        {__LINE__, uR"(\\?\C:)", uR"(\\?\C:\)"},
        // which prefixes count as rooted
        {__LINE__, u"C:x", uR"(\\?\C:x)"},
        {__LINE__, u"1:x", u"1:x"},
        {__LINE__, u"\u00C9:\\x", u"\u00C9:\\x"},
        {__LINE__, uR"(\x)", uR"(\x)"},
        {__LINE__, u"C", u"C"},
        {__LINE__, uR"(\\)", uR"(\\?\UNC\)"},
        {__LINE__, uR"(\\?)", uR"(\\?\UNC\?)"},
        {__LINE__, uR"(\\?\)", uR"(\\?\)"},
        {__LINE__, uR"(\\?\1:)", uR"(\\?\1:)"},
        // slashes and dots are kept
        {__LINE__, uR"(C:/a/..\b)", uR"(\\?\C:/a/..\b)"},
        {__LINE__, u"//s/h", u"//s/h"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mExpected), ToNormalizedPath(Units(row.mPath))) << "row at line " << row.mLine;
    }
}

TEST(IsNormalizedPath, DriveRootInExtendedForm_IsNot)
{
    EXPECT_TRUE(IsNormalizedPath(Units(uR"(\\?\C:\)")));
    EXPECT_FALSE(IsNormalizedPath(Units(uR"(\\?\C:)")));
    EXPECT_TRUE(IsNormalizedPath(Units(uR"(\\?\1:)")));
    EXPECT_TRUE(IsNormalizedPath(Units(uR"(\\?\)")));
    EXPECT_FALSE(IsNormalizedPath(Units(uR"(\\?)")));
    EXPECT_FALSE(IsNormalizedPath(Units(uR"(C:\)")));
}

TEST(IsNormalizedPath, OfAnEmptyPath_FiresTheInputContract)
{
    CheckRecorder recorder;
    EXPECT_FALSE(IsNormalizedPath(UTF16String()));
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("IsValidPath(inFullPath)").File("WinPathUtils");
    ExpectReport(recorder.Reports(CheckReport::kError)[0]).Line(25);
}

TEST(StripUNC, EachNormalizedForm_BecomesPlain)
{
    const Row rows[] = {
        {__LINE__, uR"(\\?\UNC\s\h)", uR"(\\s\h)"},
        {__LINE__, uR"(\\?\C:\x)", uR"(C:\x)"},
        {__LINE__, uR"(\\?\C:\)", uR"(C:\)"},
        {__LINE__, uR"(\\?\UNC\)", uR"(\\)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mExpected), Win::StripUNC(Units(row.mPath))) << "row at line " << row.mLine;
    }
}

TEST(StripUNC, OfAnyOtherText_ReportsAndGivesAnEmptyText)
{
    const char* const paths[] = {"C:\\x", "", "\\\\?\\C:", "\\\\?\\1:\\x", "\\\\?\\unc\\s\\h", "\\\\s\\h"};
    for (const std::string path : paths) {
        CheckRecorder recorder;
        EXPECT_EQ(UTF16String(), Win::StripUNC(UTF16String(path.begin(), path.end())));
        const auto asserts = recorder.Reports(CheckReport::kAssert);
        ASSERT_EQ(1u, asserts.size()) << path;
        ExpectReport(asserts[0])
            .Expression("!\"Non-normative UNC path detected\"")
            .Message("Path '" + path + "' is not a normative UNC path\r\n")
            .File("WinPathUtils")
            .Function("ORL::PathUtils::Win::StripUNC");
    }
}

TEST(StripUNC, OfANameBeyondASCII_ShowsItAsUTF8)
{
    CheckRecorder recorder;
    Win::StripUNC(Units(u"\u00E9"));
    ExpectReport(recorder.Reports()[0]).Message("Path '\xC3\xA9' is not a normative UNC path\r\n");
}

TEST(IsRootedPath, NeedsTwoBackslashesOrALetterAndColon)
{
    for (const char16_t* path : {u"C:", u"z:x", u"\\\\", uR"(\\?\x)"}) {
        EXPECT_TRUE(IsRootedPath(Units(path))) << Show(Units(path));
    }
    for (const char16_t* path : {u"", u"C", u"\\", u"\\x", u"1:", u"@:", u"[:", u"`:", u"{:", u"//", u"\u0143:"}) {
        EXPECT_FALSE(IsRootedPath(Units(path))) << Show(Units(path));
    }
}

TEST(IsDriveRootPath, IsExactlyADrive)
{
    for (const char16_t* path : {u"C:", u"z:", uR"(\\?\C:)"}) {
        EXPECT_TRUE(IsDriveRootPath(Units(path))) << Show(Units(path));
    }
    for (const char16_t* path : {u"", u"C", u"1:", u"C:\\", uR"(\\?\C:\)", uR"(\\?\1:)", uR"(\\.\C:)"}) {
        EXPECT_FALSE(IsDriveRootPath(Units(path))) << Show(Units(path));
    }
}

namespace {

// A second implementation of the rules, for narrow strings: it removes the extended prefix, classifies the rest by its
// shape, and adds the prefix again.
struct Shape
{
    bool mIsExtended;
    std::string mRest;
    bool mHasDrive;
};

Shape ShapeOf(const std::string& inPath)
{
    Shape shape;
    shape.mIsExtended = inPath.rfind("\\\\?\\", 0) == 0;
    shape.mRest = inPath.substr(shape.mIsExtended ? 4 : 0);
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    shape.mHasDrive =
        shape.mRest.size() > 1 && letters.find(shape.mRest[0]) != std::string::npos && shape.mRest[1] == ':';
    return shape;
}

std::string NormalForm(const std::string& inPath)
{
    const Shape shape = ShapeOf(inPath);
    const bool isBareDrive = shape.mHasDrive && shape.mRest.size() == 2;
    if (isBareDrive) {
        return "\\\\?\\" + shape.mRest + "\\";
    }
    if (shape.mIsExtended) {
        return inPath;
    }
    const bool isShare = inPath.rfind("\\\\", 0) == 0;
    return isShare ? "\\\\?\\UNC\\" + inPath.substr(2) : (shape.mHasDrive ? "\\\\?\\" : "") + inPath;
}

} // namespace

TEST(ToNormalizedPath, RandomPaths_AgreeWithTheirShapeAndComeBack)
{
    std::mt19937 random(20240602);
    const char* const starts[] = {"", "C:", "C:\\", "\\\\?\\", "\\\\?\\C:", "\\\\?\\UNC\\", "\\\\", "\\", "1:"};
    const char alphabet[] = "aU.:/\\?C";
    for (int i = 0; i < 100000; ++i) {
        std::string path = starts[random() % std::size(starts)];
        for (auto size = random() % 12; size != 0; --size) {
            path += alphabet[random() % (sizeof(alphabet) - 1)];
        }
        if (path.empty()) {
            continue;
        }
        const UTF16String units(path.begin(), path.end());
        const std::string expected = NormalForm(path);
        const UTF16String normalized = ToNormalizedPath(units);
        ASSERT_EQ(UTF16String(expected.begin(), expected.end()), normalized) << path;
        // Stripping reverses the normalization, except that a bare drive gets a backslash.
        const Shape shape = ShapeOf(path);
        const bool isAbsolute =
            (shape.mHasDrive && (path.size() == 2 || path[2] == '\\')) || path.rfind("\\\\", 0) == 0;
        if (isAbsolute && !shape.mIsExtended) {
            const std::string plain = path.size() == 2 && shape.mHasDrive ? path + "\\" : path;
            ASSERT_EQ(UTF16String(plain.begin(), plain.end()), Win::StripUNC(normalized)) << path;
        }
    }
}

TEST(MakePath, AddsWhatAPartLacks)
{
    const auto make = [](const char16_t* inDrive, const char16_t* inDirectory, const char16_t* inFile,
                         const char16_t* inExtension) {
        return MakePath(Units(inDrive), Units(inDirectory), Units(inFile), Units(inExtension));
    };
    EXPECT_EQ(Units(uR"(C:\a\f.txt)"), make(u"C", u"\\a", u"f", u"txt"));
    EXPECT_EQ(Units(uR"(C:\a\f.txt)"), make(u"C:", u"\\a\\", u"f", u".txt"));
    EXPECT_EQ(Units(uR"(C:a/f)"), make(u"C:", u"a/", u"f", u""));
    EXPECT_EQ(Units(u".txt"), make(u"", u"", u"", u"txt"));
    EXPECT_EQ(Units(u""), make(u"", u"", u"", u""));
    EXPECT_EQ(Units(uR"(C:\a\f.txt)"), MakeFullPath(Units(u"C"), Units(u"\\a"), Units(u"f"), Units(u"txt")));
}

TEST(MakePath, PartsOf2043Units_AreJoined)
{
    const UTF16String directory(2043 - 5, 'd');
    const UTF16String path = MakePath(Units(u"C"), directory, Units(u"fi"), Units(u"ex"));
    EXPECT_EQ(Units(u"C:") + directory + Units(u"\\fi.ex"), path);
}

TEST(MakePath, PartsOf2044Units_ReportAndGiveAnEmptyText)
{
    CheckRecorder recorder;
    EXPECT_EQ(UTF16String(), MakePath(Units(u"C"), UTF16String(2044 - 5, 'd'), Units(u"fi"), Units(u"ex")));
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("len <= kBufferLength")
        .Message("")
        .File("WinPathUtils")
        .Function("ORL::PathUtils::MakePath");
}

TEST(GetFullDirectoryPart, EndsWithTheLastSeparator)
{
    const Row rows[] = {
        {__LINE__, uR"(C:\a\b.c)", uR"(C:\a\)"},
        {__LINE__, uR"(C:\a\)", uR"(C:\a\)"},
        {__LINE__, u"C:/a/b", u"C:/a/"},
        {__LINE__, u"C:b", u"C:"},
        {__LINE__, u"b", u""},
        {__LINE__, u"a/b\\c", u"a/b\\"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mExpected), GetFullDirectoryPart(Units(row.mPath))) << "row at line " << row.mLine;
    }
}

TEST(GetFullDirectoryPart, OfAnEmptyPath_FiresTheInputContract)
{
    CheckRecorder recorder;
    EXPECT_EQ(UTF16String(), GetFullDirectoryPart(UTF16String()));
    const auto contracts = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("IsValidPath(inFullPath)").File("WinPathUtils");
}
