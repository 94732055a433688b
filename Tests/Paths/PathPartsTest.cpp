// Tests the PathUtils functions that split paths, check file names, and handle a trailing backslash.
#include <ORLPathUtils.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

using namespace ORL::PathUtils;
using ORLTest::ExpectReport;
using ORLTest::Show;
using ORLTest::Units;

namespace {

struct Parts
{
    UTF16String mDrive;
    UTF16String mDirectory;
    UTF16String mFile;
    UTF16String mExtension;

    bool operator==(const Parts& inOther) const
    {
        return mDrive == inOther.mDrive && mDirectory == inOther.mDirectory && mFile == inOther.mFile
               && mExtension == inOther.mExtension;
    }
};

std::ostream& operator<<(std::ostream& ioStream, const Parts& inParts)
{
    return ioStream << '[' << Show(inParts.mDrive) << "] [" << Show(inParts.mDirectory) << "] [" << Show(inParts.mFile)
                    << "] [" << Show(inParts.mExtension) << ']';
}

Parts Split(const UTF16String& inPath)
{
    const UTF16String old = Units(u"old");
    Parts parts{old, old, old, old};
    SplitPath(inPath, &parts.mDrive, &parts.mDirectory, &parts.mFile, &parts.mExtension);
    return parts;
}

} // namespace

TEST(SplitPath, EachShape_ComesApart)
{
    struct Row
    {
        int mLine;
        const char16_t* mPath;
        Parts mParts;
    };
    const Row rows[] = {
        {__LINE__, uR"(C:\a.b\c)", {Units(u"C:"), Units(uR"(\a.b\)"), Units(u"c"), Units(u"")}},
        {__LINE__, uR"(C:\a\.profile)", {Units(u"C:"), Units(uR"(\a\)"), Units(u""), Units(u".profile")}},
        {__LINE__, u"x:y", {Units(u"x:"), Units(u""), Units(u"y"), Units(u"")}},
        {__LINE__, u"1:y", {Units(u"1:"), Units(u""), Units(u"y"), Units(u"")}},
        {__LINE__, uR"(a/b\c.d)", {Units(u""), Units(uR"(a/b\)"), Units(u"c"), Units(u".d")}},
        {__LINE__, u"", {Units(u""), Units(u""), Units(u""), Units(u"")}},
        // the drive
        {__LINE__, u":", {Units(u""), Units(u""), Units(u":"), Units(u"")}},
        {__LINE__, u"C:", {Units(u"C:"), Units(u""), Units(u""), Units(u"")}},
        {__LINE__, u"::", {Units(u"::"), Units(u""), Units(u""), Units(u"")}},
        {__LINE__, u"\\:x", {Units(u"\\:"), Units(u""), Units(u"x"), Units(u"")}},
        {__LINE__, u"ab:c", {Units(u""), Units(u""), Units(u"ab:c"), Units(u"")}},
        {__LINE__, uR"(\\?\C:\a)", {Units(u""), Units(uR"(\\?\C:\)"), Units(u"a"), Units(u"")}},
        // the extension
        {__LINE__, u"a.tar.gz", {Units(u""), Units(u""), Units(u"a.tar"), Units(u".gz")}},
        {__LINE__, u"a.", {Units(u""), Units(u""), Units(u"a"), Units(u".")}},
        {__LINE__, u"..", {Units(u""), Units(u""), Units(u"."), Units(u".")}},
        {__LINE__, u".\\", {Units(u""), Units(u".\\"), Units(u""), Units(u"")}},
        {__LINE__, u"x:.", {Units(u"x:"), Units(u""), Units(u""), Units(u".")}},
        // units whose low byte is a separator or a dot
        {__LINE__, u"a\u5C5Cb\u2F2Fc\u2E2Ed", {Units(u""), Units(u""), Units(u"a\u5C5Cb\u2F2Fc\u2E2Ed"), Units(u"")}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mParts, Split(Units(row.mPath))) << "row at line " << row.mLine;
    }
}

TEST(SplitPath, TextBehindATerminator_IsNotLookedAt)
{
    for (std::size_t at = 0; at < 12; ++at) {
        UTF16String path(at, 'f');
        path += static_cast<unsigned short>(0);
        path += Units(u"\\x.y");
        EXPECT_EQ((Parts{Units(u""), Units(u""), UTF16String(at, 'f'), Units(u"")}), Split(path)) << at;
    }
}

TEST(SplitPath, OutputsMayBeNull_OrThePathItself)
{
    SplitPath(Units(uR"(C:\a\b.c)"), nullptr, nullptr, nullptr, nullptr);
    UTF16String path = Units(uR"(C:\a\b.c)");
    UTF16String extension;
    SplitPath(path, nullptr, &path, nullptr, &extension);
    EXPECT_EQ(Units(uR"(\a\)"), path);
    EXPECT_EQ(Units(u".c"), extension);
}

namespace {

// A second implementation of the rules: one pass over a narrow string that appends each character to a part; at a
// separator it moves the file name to the directory.
struct NarrowParts
{
    std::string mDrive;
    std::string mDirectory;
    std::string mFile;
    std::string mExtension;
};

NarrowParts WalkForward(const std::string& inPath)
{
    NarrowParts parts;
    std::string rest = inPath;
    if (rest.size() > 1 && rest[1] == ':') {
        parts.mDrive = rest.substr(0, 2);
        rest = rest.substr(2);
    }
    for (const char character : rest) {
        if (character == '/' || character == '\\') {
            parts.mDirectory += parts.mFile + parts.mExtension + character;
            parts.mFile.clear();
            parts.mExtension.clear();
        } else if (character == '.') {
            parts.mFile += parts.mExtension;
            parts.mExtension = ".";
        } else {
            (parts.mExtension.empty() ? parts.mFile : parts.mExtension) += character;
        }
    }
    return parts;
}

UTF16String Widened(const std::string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

} // namespace

TEST(SplitPath, RandomPaths_AgreeWithAWalkFromTheFront)
{
    std::mt19937 random(20240601);
    const char alphabet[] = "aB.:/\\ c";
    for (int i = 0; i < 100000; ++i) {
        std::string path;
        for (auto size = random() % 24; size != 0; --size) {
            path += alphabet[random() % (sizeof(alphabet) - 1)];
        }
        const NarrowParts walked = WalkForward(path);
        const Parts expected{Widened(walked.mDrive), Widened(walked.mDirectory), Widened(walked.mFile),
                             Widened(walked.mExtension)};
        const UTF16String units = Widened(path);
        ASSERT_EQ(expected, Split(units)) << path;
        if (!path.empty()) {
            ASSERT_EQ(expected.mDrive, GetDrivePart(units)) << path;
            ASSERT_EQ(expected.mDirectory, GetDirectoryPart(units)) << path;
            ASSERT_EQ(expected.mFile, GetFilePart(units)) << path;
            ASSERT_EQ(expected.mExtension, GetExtensionPart(units)) << path;
            ASSERT_EQ(expected.mFile + expected.mExtension, GetFullFilePart(units)) << path;
            ASSERT_EQ(expected.mDrive + expected.mDirectory, GetFullDirectoryPart(units)) << path;
        }
    }
}

TEST(PathParts, OfAnEmptyPath_FireTheInputContractAndAreEmpty)
{
    using Part = UTF16String (*)(const UTF16String&);
    const Part parts[] = {&GetDrivePart, &GetDirectoryPart, &GetFilePart, &GetExtensionPart, &GetFullFilePart};
    for (const Part part : parts) {
        ORLTest::CheckRecorder recorder;
        EXPECT_EQ(UTF16String(), part(UTF16String()));
        const auto contracts = recorder.Reports(ORLTest::CheckReport::kContract);
        ASSERT_EQ(1u, contracts.size());
        ExpectReport(contracts[0]).Expression("IsValidPath(inFullPath)").File("PathUtils");
        const auto errors = recorder.Reports(ORLTest::CheckReport::kError);
        ASSERT_EQ(1u, errors.size());
        ExpectReport(errors[0])
            .Expression(
                "$$$/tvxcore/utility/Error/Contract/InputContractViolation=An input contract violation has occurred!")
            .Line(25);
    }
}

TEST(PathConstants, HoldTheirTexts)
{
    EXPECT_EQ(Units(u"\\"), kPathSeparator);
    EXPECT_EQ(Units(u"."), kExtension);
    EXPECT_EQ(Units(u"\\ / : * ? \" < > |"), kIllegalFilenameCharactersDisplay);
    EXPECT_EQ(Units(u"\\"), GetPathSeparator());
}

TEST(IsValidPath, LooksAtNoCharacter)
{
    EXPECT_FALSE(IsValidPath(UTF16String()));
    EXPECT_TRUE(IsValidPath(Units(u"*?\"<>|")));
    EXPECT_TRUE(IsValidPath(Units(u" ")));
    EXPECT_TRUE(IsValidPath(UTF16String(1, 0)));
}

TEST(IsValidFileName, EachKindOfName_IsJudged)
{
    struct Row
    {
        int mLine;
        const char16_t* mName;
        bool mIsValid;
    };
    const Row rows[] = {
        {__LINE__, u"", false},
        {__LINE__, u"   ", false},
        {__LINE__, u" a", true},
        {__LINE__, u"\u3000\u3000", false},
        {__LINE__, u"a|b", false},
        // every illegal character
        {__LINE__, u"a\\", false},
        {__LINE__, u"/a", false},
        {__LINE__, u":", false},
        {__LINE__, u"a*", false},
        {__LINE__, u"?", false},
        {__LINE__, u"\"", false},
        {__LINE__, u"<", false},
        {__LINE__, u">", false},
        // white space, and its neighbouring code points
        {__LINE__, u"\t \u00A0\u2000\u200B\u202F\u205F\u3000", false},
        {__LINE__, u"\n", true},
        {__LINE__, u"\u1FFF", true},
        {__LINE__, u"\u200C", true},
        {__LINE__, u"\u202E", true},
        {__LINE__, u"\u2060", true},
        {__LINE__, u"\u3001", true},
        // names that no rule forbids
        {__LINE__, u"con", true},
        {__LINE__, u"a.", true},
        {__LINE__, u"a ", true},
        {__LINE__, u".", true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mIsValid, IsValidFileName(Units(row.mName))) << "row at line " << row.mLine;
    }
    EXPECT_TRUE(IsValidFileName(UTF16String(10000, 'a')));
}

TEST(RemoveIllegalFileNameCharacters, ErasesThemAllAndTellsSo)
{
    UTF16String name = Units(u"*a\\/:*?\"<>|b|");
    EXPECT_TRUE(RemoveIllegalFileNameCharacters(name));
    EXPECT_EQ(Units(u"ab"), name);
    EXPECT_FALSE(RemoveIllegalFileNameCharacters(name));
    EXPECT_EQ(Units(u"ab"), name);
    UTF16String empty;
    EXPECT_FALSE(RemoveIllegalFileNameCharacters(empty));
    UTF16String illegal = Units(u"?");
    EXPECT_TRUE(RemoveIllegalFileNameCharacters(illegal));
    EXPECT_EQ(UTF16String(), illegal);
}

TEST(TrailingSlash, OnlyABackslashCounts)
{
    EXPECT_FALSE(HasTrailingSlash(Units(u"a/")));
    EXPECT_TRUE(HasTrailingSlash(Units(u"a\\")));
    EXPECT_FALSE(HasTrailingSlash(UTF16String()));
    EXPECT_EQ(Units(u"a/\\"), AddTrailingSlash(Units(u"a/")));
    EXPECT_EQ(Units(u"a\\"), AddTrailingSlash(Units(u"a\\")));
    EXPECT_EQ(Units(u"a\\"), AddTrailingSlash(Units(u"a")));
    EXPECT_EQ(UTF16String(), AddTrailingSlash(UTF16String()));
}

TEST(RemoveTrailingSlash, OfTwoBackslashes_RemovesOne)
{
    EXPECT_EQ(Units(u"a\\"), RemoveTrailingSlash(Units(u"a\\\\")));
    EXPECT_EQ(Units(u"a"), RemoveTrailingSlash(Units(u"a\\")));
    EXPECT_EQ(Units(u"a/"), RemoveTrailingSlash(Units(u"a/")));
    EXPECT_EQ(UTF16String(), RemoveTrailingSlash(Units(u"\\")));
    EXPECT_EQ(UTF16String(), RemoveTrailingSlash(UTF16String()));
}

TEST(FileHasExtension, MatchesWithAndWithoutTheDotInItsCase)
{
    const UTF16String path = Units(uR"(C:\a.b\file.txt)");
    EXPECT_TRUE(FileHasExtension(path, Units(u"txt")));
    EXPECT_TRUE(FileHasExtension(path, Units(u".txt")));
    EXPECT_FALSE(FileHasExtension(path, Units(u"TXT")));
    EXPECT_FALSE(FileHasExtension(path, Units(u"xt")));
    EXPECT_FALSE(FileHasExtension(path, Units(u"..txt")));
    EXPECT_FALSE(FileHasExtension(Units(uR"(C:\a\f.TXT)"), Units(u".txt")));
    EXPECT_FALSE(FileHasExtension(Units(uR"(C:\a.txt\f)"), Units(u"txt")));
    EXPECT_FALSE(FileHasExtension(path, UTF16String()));
    EXPECT_FALSE(FileHasExtension(UTF16String(), Units(u"txt")));
    EXPECT_TRUE(FileHasExtension(Units(u"a."), Units(u".")));
}
