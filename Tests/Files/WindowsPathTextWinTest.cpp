// Compares the portable path string functions with those of Windows on thousands of generated paths.
#include <Files/WindowsPathText.h>
#include <Platform/Disks.h>
#include <Platform/Paths.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <initializer_list>
#include <random>
#include <string>

using namespace ORL::PathUtils;
using ORLTest::Show;

namespace {

UTF16String Units(const std::string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

class PathGenerator
{
public:
    explicit PathGenerator(unsigned inSeed) : mRandom(inSeed) {}

    bool OneIn(unsigned inCount) { return mRandom() % inCount == 0; }

    std::string Pick(std::initializer_list<const char*> inTexts)
    {
        return *(inTexts.begin() + mRandom() % inTexts.size());
    }

    std::string Names(std::initializer_list<const char*> inNames, unsigned inMost)
    {
        std::string names;
        for (unsigned count = static_cast<unsigned>(mRandom() % (inMost + 1)); count != 0; --count) {
            names += Pick(inNames) + (count > 1 || OneIn(2) ? "\\" : "");
        }
        return names;
    }

private:
    std::mt19937 mRandom;
};

bool Has(const std::string& inText, const char* inPart)
{
    return inText.find(inPart) != std::string::npos;
}

} // namespace

// Excludes inputs for which Windows returns arbitrary results: names such as "..x", a trailing dot, ".." after a share,
// drives without a root.
TEST(HomePathText, Combine_AgreesWithTheSystem)
{
    PathGenerator generator(1);
    const std::initializer_list<const char*> names = {"a",  "bc", ".", "..",  "abc", "x..y",
                                                      "x.", ".y", " ", "a.b", "zz"};
    int compared = 0;
    for (int i = 0; i < 50000; ++i) {
        const std::string base = generator.Pick({"C:\\", "D:\\", "\\\\s\\h\\", "\\\\s\\h"}) + generator.Names(names, 3);
        const std::string more = (generator.OneIn(6) ? "\\" : "") + generator.Names(names, 4)
                                 + (generator.OneIn(9) ? "\\" + std::string(250, 'n') : "");
        const bool endsInDot = base.back() == '.' || (!more.empty() && more.back() == '.');
        if (endsInDot || (base[0] == '\\' && Has(base + "\\" + more, "..\\"))) {
            continue;
        }
        UTF16String expected = Units("untouched");
        UTF16String actual = Units("untouched");
        const bool answer = Platform::CombinePaths_Impl(Units(base), Units(more), expected);
        ASSERT_EQ(answer, WindowsText::Combine(Units(base), Units(more), actual)) << base << " + " << more;
        ASSERT_EQ(Show(expected), Show(actual)) << base << " + " << more;
        ++compared;
    }
    EXPECT_GT(compared, 20000);
}

// Excludes strings of two units: Windows reads past their end.
TEST(HomePathText, RelativePathTo_AgreesWithTheSystem)
{
    PathGenerator generator(2);
    const std::initializer_list<const char*> names = {"a", "bc", "abc", "AB", "Bc", "x.y",
                                                      ".", "..", "",    " ",  "d",  "C:"};
    const std::initializer_list<const char*> starts = {"", "", "\\", "\\\\", "C:\\", "c:", "\\\\s\\h\\", "C:/"};
    for (int i = 0; i < 50000; ++i) {
        const std::string tail = generator.OneIn(20) ? std::string(255, 't') : "";
        const std::string from = generator.Pick(starts) + generator.Names(names, 5);
        const std::string to = generator.Pick(starts) + generator.Names(names, 5) + tail;
        if (from.size() <= 2 || to.size() <= 2) {
            continue;
        }
        UTF16String expected = Units("untouched");
        UTF16String actual = Units("untouched");
        const bool answer = Platform::RelativePathTo_Impl(Units(from), Units(to), expected);
        ASSERT_EQ(answer, WindowsText::RelativePathTo(Units(from), Units(to), actual)) << from << " -> " << to;
        ASSERT_EQ(Show(expected), Show(actual)) << from << " -> " << to;
    }
}

TEST(HomePathText, NextComponentRootAndMakePath_AgreeWithTheSystem)
{
    PathGenerator generator(3);
    const std::initializer_list<const char*> names = {"a", "bc", ".", "", " ", "C:", "/"};
    for (int i = 0; i < 20000; ++i) {
        const UTF16String path =
            Units(generator.Pick({"", "\\", "\\\\", "C:\\", "C:", "\\\\s\\h"}) + generator.Names(names, 4));
        ASSERT_EQ(Platform::FindNextComponent_Impl(path.c_str()), WindowsText::FindNextComponent(path.c_str()))
            << Show(path);
        ASSERT_EQ(ORL::DiskUtils::Platform::IsRoot_Impl(path), WindowsText::IsRoot(path)) << Show(path);
        const UTF16String drive = Units(generator.Pick({"", "C", "C:", "cd", "\\"}));
        const UTF16String directory = Units(generator.Pick({"", "\\", "\\a\\", "a", "a/", "/a\\b"}));
        const UTF16String extension = Units(generator.Pick({"", "txt", ".txt", ".", "..x"}));
        ASSERT_EQ(Platform::MakePath_Impl(drive, directory, path, extension),
                  WindowsText::MakePath(drive, directory, path, extension))
            << Show(drive) << ' ' << Show(directory) << ' ' << Show(path) << ' ' << Show(extension);
    }
}

TEST(HomePathText, NamesBeyondASCII_AreComparedAsTheSystemDoes)
{
    const char16_t* const pairs[][2] = {{u"\u00C9", u"\u00E9"}, {u"\u03A3", u"\u03C3"}, {u"\u0416", u"\u0436"},
                                        {u"\u00C9", u"e"},      {u"\u4E00", u"\u4E8C"}, {u"\u0130", u"i"},
                                        {u"\u0178", u"\u00FF"}, {u"\u0141", u"\u0142"}};
    for (const auto& pair : pairs) {
        const UTF16String from = ORLTest::Units(u"abc\\") + ORLTest::Units(pair[0]) + ORLTest::Units(u"xy\\");
        const UTF16String to = ORLTest::Units(u"abc\\") + ORLTest::Units(pair[1]) + ORLTest::Units(u"xy\\d\\");
        UTF16String expected;
        UTF16String actual;
        EXPECT_EQ(Platform::RelativePathTo_Impl(from, to, expected), WindowsText::RelativePathTo(from, to, actual));
        EXPECT_EQ(Show(expected), Show(actual)) << Show(from) << " -> " << Show(to);
    }
}
