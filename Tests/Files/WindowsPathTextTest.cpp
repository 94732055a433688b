// Tests the Windows path string functions, and the public functions built on them.
#include <Files/WindowsPathText.h>

#include <ORLPathUtils.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>

using namespace ORL::PathUtils;
using ORLTest::Show;
using ORLTest::Units;

TEST(FindNextComponent, GivesWhatFollowsTheFirstBackslash)
{
    const auto next = [](const char16_t* inPath) {
        const UTF16String path = Units(inPath);
        return UTF16String(WindowsText::FindNextComponent(path.c_str()));
    };
    EXPECT_EQ(Units(u"b\\c"), next(u"a\\b\\c"));
    EXPECT_EQ(Units(u"b"), next(u"\\\\b"));
    EXPECT_EQ(Units(u""), next(u"a"));
    EXPECT_EQ(Units(u""), next(u"a\\"));
    EXPECT_EQ(nullptr, WindowsText::FindNextComponent(UTF16String().c_str()));
}

TEST(ArePathsRelative, EachPair_HasItsAnswer)
{
    struct Row
    {
        int mLine;
        const char16_t* mFrom;
        const char16_t* mTo;
        const char16_t* mRelative; // null: the function returns false
    };
    const Row rows[] = {
        {__LINE__, uR"(C:\aa\b\)", uR"(D:\aa\c\)", uR"(..\c\)"},
        {__LINE__, uR"(C:\a\b\)", uR"(D:\a\c\)", uR"(..\c\)"},
        {__LINE__, uR"(C:\a\)", uR"(C:\b\)", nullptr},
        {__LINE__, uR"(C:\abc\)", uR"(C:\abc\d\)", uR"(\d\)"},
        {__LINE__, uR"(C:\ab\)", uR"(C:\ab\d\)", uR"(.\d\)"},
        {__LINE__, uR"(C:\abc\d\e\)", uR"(C:\abc\)", uR"(..\..\)"},
        // a file name is dropped, and names are compared case-insensitively
        {__LINE__, uR"(C:\abc\d\f.txt)", uR"(C:\ABC\e\g.txt)", uR"(..\e\)"},
        // ArePathsRelative treats slashes as separators
        {__LINE__, u"C:/abc/d/", u"C:/abc/e/", uR"(..\e\)"},
        // the path of a share has no ":", so ArePathsRelative prepends "C:"
        {__LINE__, uR"(\\server\abc\d\)", uR"(\\server\abc\e\)", uR"(..\e\)"},
        // a common prefix of two names does not count
        {__LINE__, uR"(C:\abcd\)", uR"(C:\abce\)", nullptr},
        {__LINE__, u"C:", uR"(C:\a\)", nullptr},
        {__LINE__, uR"(C:\a\)", uR"(relative\)", nullptr},
        {__LINE__, uR"(relative\)", uR"(C:\a\)", nullptr},
        {__LINE__, u"", u"", nullptr},
    };
    for (const Row& row : rows) {
        UTF16String relative = Units(u"untouched");
        EXPECT_EQ(row.mRelative != nullptr, ArePathsRelative(Units(row.mFrom), Units(row.mTo), relative))
            << "row at line " << row.mLine;
        EXPECT_EQ(Units(row.mRelative != nullptr ? row.mRelative : u"untouched"), relative)
            << "row at line " << row.mLine << ": " << Show(relative);
    }
}

TEST(ArePathsRelative, PathsOnTwoDrives_AreComparedByTheirDirectoriesAlone)
{
    UTF16String relative;
    EXPECT_TRUE(ArePathsRelative(Units(uR"(C:\a\b\)"), Units(uR"(D:\a\c\)"), relative));
}

TEST(CombinePaths, EachPair_IsCombined)
{
    struct Row
    {
        int mLine;
        const char16_t* mBase;
        const char16_t* mMore;
        const char16_t* mCombined;
    };
    const Row rows[] = {
        {__LINE__, uR"(C:\a)", u"b", uR"(C:\a\b)"},
        {__LINE__, uR"(C:\a\)", u"b", uR"(C:\a\b)"},
        {__LINE__, uR"(C:\a)", u"", uR"(C:\a)"},
        {__LINE__, uR"(C:\a\b)", uR"(..\c)", uR"(C:\a\c)"},
        {__LINE__, uR"(C:\a\b)", uR"(.\c)", uR"(C:\a\b\c)"},
        {__LINE__, uR"(C:\a\b)", u"..", uR"(C:\a)"},
        {__LINE__, uR"(C:\a)", uR"(..\..\..\b)", uR"(C:\b)"},
        {__LINE__, uR"(C:\a\)", uR"(b\)", uR"(C:\a\b\)"},
        // a second path that starts at the root, or has its own root
        {__LINE__, uR"(C:\a\b)", uR"(\c)", uR"(C:\c)"},
        {__LINE__, uR"(C:\a)", uR"(D:\b)", uR"(D:\b)"},
        {__LINE__, uR"(C:\a)", uR"(\\s\h\b)", uR"(\\s\h\b)"},
        {__LINE__, uR"(\\s\h\a)", u"b", uR"(\\s\h\a\b)"},
        {__LINE__, uR"(\\s\h\a)", uR"(\b)", uR"(\\s\h\b)"},
        // CombinePaths does not treat slashes as separators
        {__LINE__, uR"(C:\a)", u"../b", uR"(C:\a\../b)"},
        {__LINE__, u"relative", u"b", u""},
        {__LINE__, u"", u"C:\\b", u""},
    };
    for (const Row& row : rows) {
        if (Units(row.mMore) == Units(u"../b")) {
            // Tests only the portable code: Windows treats any name that begins with two dots as "..".
            UTF16String combined;
            EXPECT_TRUE(WindowsText::Combine(Units(row.mBase), Units(row.mMore), combined));
            EXPECT_EQ(Units(row.mCombined), combined);
            continue;
        }
        EXPECT_EQ(Units(row.mCombined), CombinePaths(Units(row.mBase), Units(row.mMore)))
            << "row at line " << row.mLine;
    }
}

TEST(CombinePaths, From260UnitsOn_GivesAnEmptyText)
{
    const UTF16String name(259 - 4, 'n');
    EXPECT_EQ(Units(uR"(C:\a)") + name, CombinePaths(Units(u"C:\\"), Units(u"a") + name));
    EXPECT_EQ(UTF16String(), CombinePaths(Units(u"C:\\"), Units(u"ab") + name));
    EXPECT_EQ(UTF16String(), CombinePaths(UTF16String(Units(u"C:\\")).append(300, 'a'), Units(u"b")));
}

// An empty name or a single dot is not a share.
TEST(HomePathText, ServerWithoutAShare_KeepsItsNameAlone)
{
    struct Row
    {
        int mLine;
        const char16_t* mBase;
        const char16_t* mMore;
        const char16_t* mCombined;
    };
    const Row rows[] = {
        {__LINE__, uR"(\\srv\)", uR"(.\)", uR"(\\srv\)"},
        {__LINE__, uR"(\\srv\\)", uR"(\dir.ext\x y)", uR"(\\srv\dir.ext\x y)"},
        {__LINE__, uR"(\\srv)", uR"(\a\b)", uR"(\\srv\a\b)"},
        {__LINE__, uR"(\\srv\.\x)", uR"(\a)", uR"(\\srv\a)"},
        {__LINE__, uR"(\\srv\.\x)", u"y", uR"(\\srv\x\y)"},
        {__LINE__, uR"(\\srv\h)", uR"(.\)", uR"(\\srv\h\)"},
        {__LINE__, uR"(\\srv\h\)", uR"(\a)", uR"(\\srv\h\a)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Units(row.mCombined), CombinePaths(Units(row.mBase), Units(row.mMore)))
            << "row at line " << row.mLine << ": " << Show(CombinePaths(Units(row.mBase), Units(row.mMore)));
    }
}

// Relative paths have the same length limit on both platforms, however deep the two folders are.
TEST(ArePathsRelative, DeepPaths_AreAnsweredAlikeAndStayInBounds)
{
    const auto deep = [](const char16_t* inName, int inFolders) {
        UTF16String path = Units(u"C:\\top\\");
        for (int i = 0; i < inFolders; ++i) {
            path += Units(inName) + Units(u"\\");
        }
        return path;
    };
    for (int folders = 60; folders <= 400; ++folders) {
        UTF16String relative = Units(u"untouched");
        const std::size_t size = 3 * static_cast<std::size_t>(folders) + 2 * static_cast<std::size_t>(folders);
        const bool fits = size < 260;
        ASSERT_EQ(fits, ArePathsRelative(deep(u"a", folders), deep(u"b", folders), relative)) << folders;
        ASSERT_EQ(fits ? size : Units(u"untouched").size(), relative.size()) << folders << ": " << Show(relative);
    }
    UTF16String relative;
    EXPECT_TRUE(ArePathsRelative(deep(u"a", 200), deep(u"a", 200) + Units(u"b\\"), relative));
    EXPECT_EQ(Units(uR"(\b\)"), relative) << Show(relative);
}

// Tests only the portable code, because Windows versions differ in these cases or read past their input.
TEST(HomePathText, DotsAtTheEndsOfAPath_NeverLeaveTheRoot)
{
    const auto combine = [](const char16_t* inBase, const char16_t* inMore) {
        UTF16String path;
        EXPECT_TRUE(WindowsText::Combine(Units(inBase), Units(inMore), path));
        return path;
    };
    EXPECT_EQ(Units(uR"(C:\)"), combine(u"C:", u""));
    EXPECT_EQ(Units(uR"(C:\)"), combine(u"C:\\", u"."));
    EXPECT_EQ(Units(uR"(C:\a)"), combine(u"C:\\a", u"."));
    EXPECT_EQ(Units(uR"(C:\)"), combine(u"C:\\a", u"..\\.."));
    EXPECT_EQ(Units(uR"(\\s\h\)"), combine(u"\\\\s\\h", u"..\\"));
    EXPECT_EQ(Units(uR"(\\s\h\x)"), combine(u"\\\\s\\h\\a", u"..\\..\\x"));
    EXPECT_EQ(Units(uR"(C:\..a)"), combine(u"C:\\", u"..a"));
    EXPECT_EQ(Units(uR"(C:\...)"), combine(u"C:\\", u"..."));
    UTF16String relative;
    EXPECT_TRUE(WindowsText::RelativePathTo(Units(u"ab"), Units(u"ab"), relative));
    EXPECT_EQ(Units(u"."), relative);
}

TEST(HomePathText, IsRoot_KnowsDrivesAndShares)
{
    for (const char16_t* path : {u"\\", u"C:\\", u"\\\\", u"\\\\s", u"\\\\s\\h", u"\\\\s\\"}) {
        EXPECT_TRUE(WindowsText::IsRoot(Units(path))) << Show(Units(path));
    }
    for (const char16_t* path : {u"", u"C:", u"C:\\a", u"a", u"\\a", u"\\\\s\\h\\", u"\\\\s\\h\\a", u"C:/"}) {
        EXPECT_FALSE(WindowsText::IsRoot(Units(path))) << Show(Units(path));
    }
}
