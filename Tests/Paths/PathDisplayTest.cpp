// Tests paths as the shell displays them.
#include <ORLPathUtils.h>

#include <CheckRecorder.h>
#include <Files/PathForms.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <random>

using namespace ORL::PathUtils;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

struct Step
{
    UTF16String mName;
    UTF16String mLeft;
};

Step SplitLeaf(const UTF16String& inPath)
{
    Step step;
    step.mLeft = inPath;
    step.mName = GetLeafDisplayName(step.mLeft);
    return step;
}

} // namespace

TEST(GetLeafDisplayName, EachShape_GivesItsNameAndIsCut)
{
    struct Row
    {
        int mLine;
        const char16_t* mPath;
        const char16_t* mName;
        const char16_t* mLeft;
    };
    const Row rows[] = {
        // too short for a component
        {__LINE__, u"", u"", u""},
        {__LINE__, u"C:\\", u"C:\\", u""},
        {__LINE__, u"a\\b", u"a\\b", u""},
        // servers and shares
        {__LINE__, uR"(\\server\share)", uR"(\\server\share)", u""},
        {__LINE__, uR"(\\server)", uR"(\\server)", u""},
        {__LINE__, u"abcd", u"abcd", u""},
        // names unknown to the shell fall back to the plain leaf
        {__LINE__, uR"(\\nosuch.invalid\share\x)", u"x", uR"(\\nosuch.invalid\share)"},
        {__LINE__, uR"(Q:\no\such)", u"such", uR"(Q:\no)"},
        {__LINE__, uR"(a\bc)", u"bc", u"a"},
    };
    for (const Row& row : rows) {
        const Step step = SplitLeaf(Units(row.mPath));
        EXPECT_EQ(Units(row.mName), step.mName) << "row at line " << row.mLine << ": " << Show(step.mName);
        EXPECT_EQ(Units(row.mLeft), step.mLeft) << "row at line " << row.mLine << ": " << Show(step.mLeft);
    }
}

TEST(GetLeafDisplayName, OfAFolderThatExists_IsItsName)
{
    const TempFolder folder;
    folder.MakeFolder("clips one");
    const Step step = SplitLeaf(folder.Path(u"clips one"));
    EXPECT_EQ(Units(u"clips one"), step.mName) << Show(step.mName);
    EXPECT_EQ(folder.Path(), step.mLeft);
}

TEST(GetLeafDisplayName, From261UnitsOn_LeavesTheShellOut)
{
    const UTF16String folder = Units(u"C:\\") + UTF16String(200, 'f');
    const UTF16String leaf(261 - folder.size() - 1, 'l');
    const Step cut = SplitLeaf(folder + Units(u"\\") + leaf);
    EXPECT_EQ(leaf, cut.mName);
    EXPECT_EQ(folder, cut.mLeft);
    // without a backslash, or with nothing after the last one, both the name and the rest are the whole path
    const UTF16String trailing = folder + Units(u"\\") + leaf + Units(u"\\");
    EXPECT_EQ(trailing, SplitLeaf(trailing).mName);
    EXPECT_EQ(trailing, SplitLeaf(trailing).mLeft);
    const UTF16String flat(261, 'f');
    EXPECT_EQ(flat, SplitLeaf(flat).mName);
    EXPECT_EQ(flat, SplitLeaf(flat).mLeft);
    // a path of 260 units is still passed to the shell
    EXPECT_EQ(UTF16String(), SplitLeaf(UTF16String(260, 'f')).mLeft);
}

TEST(GetLeafDisplayStringFromPath, OfANormalizedPath_IsTheLeaf)
{
    EXPECT_EQ(Units(u"such"), GetLeafDisplayStringFromPath(Units(uR"(\\?\Q:\no\such)")));
    EXPECT_EQ(Units(uR"(Q:\no\such)"), GetLeafDisplayStringFromPath(Units(uR"(Q:\no\such)")));
    EXPECT_EQ(Units(uR"(\\server\share)"), GetLeafDisplayStringFromPath(Units(uR"(\\?\UNC\server\share)")));
}

TEST(GetDisplayStringFromPath, OfAPathThatIsNotNormalized_ReturnsItUntouched)
{
    for (const char16_t* path : {u"C:\\a\\", u"relative", u"\\\\s\\h\\x", u"\\\\?\\C:", u"C:/x"}) {
        EXPECT_EQ(Units(path), GetDisplayStringFromPath(Units(path)));
    }
}

TEST(GetDisplayStringFromPath, OfANormalizedPath_JoinsTheNames)
{
    EXPECT_EQ(Units(uR"(Q:\no\such)"), GetDisplayStringFromPath(Units(uR"(\\?\Q:\no\such)")));
    EXPECT_EQ(Units(uR"(Q:\no\such)"), GetDisplayStringFromPath(Units(uR"(\\?\Q:\no\such\)")));
    EXPECT_EQ(Units(uR"(\\nosuch.invalid\share\x)"),
              GetDisplayStringFromPath(Units(uR"(\\?\UNC\nosuch.invalid\share\x)")));
}

TEST(GetDisplayStringFromPath, OfALongPath_IsThePath)
{
    UTF16String path = Units(u"Q:");
    while (path.size() < 4000) {
        path += Units(u"\\") + UTF16String(79, 'n');
    }
    EXPECT_EQ(path, GetDisplayStringFromPath(Units(uR"(\\?\)") + path));
}

// A long path that ends in two backslashes must not loop without progress.
TEST(GetDisplayStringFromPath, OfALongPathThatEndsInTwoBackslashes_EndsAndGivesItWhole)
{
    const UTF16String path = Units(u"Q:\\") + UTF16String(300, 'n') + Units(u"\\\\");
    EXPECT_EQ(RemoveTrailingSlash(path), GetDisplayStringFromPath(Units(uR"(\\?\)") + path));
}

TEST(GetDisplayStringFromPath, OfEveryText_Ends)
{
    ORLTest::CheckRecorder recorder;
    std::mt19937 random(7);
    const char alphabet[] = "a\\:.Q?";
    for (int i = 0; i < 60; ++i) {
        UTF16String path = Units(i % 2 == 0 ? uR"(\\?\Q:\)" : uR"(\\?\UNC\)");
        for (auto size = random() % (i % 10 == 0 ? 400 : 12); size != 0; --size) {
            path += static_cast<unsigned char>(alphabet[random() % (sizeof(alphabet) - 1)]);
        }
        const UTF16String display = GetDisplayStringFromPath(path);
        EXPECT_FALSE(display.empty() && !Win::StripUNC(path).empty() && Win::StripUNC(path) != Units(u"\\\\"))
            << Show(path);
    }
}
