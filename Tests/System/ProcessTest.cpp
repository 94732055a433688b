// Tests IsProcessRunning with this program, which is certainly running.
#include <ORLProcess.h>

#include <TextHelpers.h>

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <string>

using namespace ORL::Process;

namespace {

const std::string kThisProgram = ORL_THIS_PROGRAM;

bool IsRunning(const std::string& inName, int inFlags)
{
    const UTF16String name(inName.begin(), inName.end());
    const auto flags = static_cast<ProcessSearchFlags::Type>(inFlags);
    EXPECT_FALSE(FocusProcess(name, flags));
    return IsProcessRunning(name, flags);
}

enum { kExact = ProcessSearchFlags::kExactMatch, kStarts, kEnds, kContains };

} // namespace

TEST(IsProcessRunning, ExactNameOfThisProgram_IsTrue)
{
    EXPECT_TRUE(IsRunning(kThisProgram, kExact));
    EXPECT_TRUE(IsRunning(kThisProgram, kStarts));
    EXPECT_TRUE(IsRunning(kThisProgram, kEnds));
    EXPECT_TRUE(IsRunning(kThisProgram, kContains));
}

TEST(IsProcessRunning, TheNameInAnotherCase_IsFalse)
{
    std::string upper = kThisProgram;
    std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
    ASSERT_NE(kThisProgram, upper);
    for (const int flags : {kExact, kStarts, kEnds, kContains}) {
        EXPECT_FALSE(IsRunning(upper, flags)) << flags;
    }
}

TEST(IsProcessRunning, AMiddlePartOfTheName_IsFoundByContainsAlone)
{
    const std::string middle = kThisProgram.substr(1, kThisProgram.size() - 2);
    EXPECT_FALSE(IsRunning(middle, kExact));
    EXPECT_FALSE(IsRunning(middle, kStarts));
    EXPECT_FALSE(IsRunning(middle, kEnds));
    EXPECT_TRUE(IsRunning(middle, kContains));
}

TEST(IsProcessRunning, BeginningAndEnd_AreFoundByTheirFlags)
{
    const std::string begin = kThisProgram.substr(0, kThisProgram.size() - 1);
    const std::string end = kThisProgram.substr(1);
    EXPECT_TRUE(IsRunning(begin, kStarts));
    EXPECT_FALSE(IsRunning(begin, kEnds));
    EXPECT_TRUE(IsRunning(end, kEnds));
    EXPECT_FALSE(IsRunning(end, kStarts));
}

TEST(IsProcessRunning, AnEmptyText_MatchesByStartAndByContentsOnly)
{
    EXPECT_FALSE(IsRunning("", kExact));
    EXPECT_TRUE(IsRunning("", kStarts));
    EXPECT_FALSE(IsRunning("", kEnds));
    EXPECT_TRUE(IsRunning("", kContains));
}

TEST(IsProcessRunning, OtherFlags_MatchNothing)
{
    for (const int flags : {-1, 4, 1000}) {
        EXPECT_FALSE(IsRunning(kThisProgram, flags)) << flags;
        EXPECT_FALSE(IsRunning("", flags)) << flags;
    }
}

TEST(IsProcessRunning, ANameThatIsNotThere_IsFalse)
{
    for (const int flags : {kExact, kStarts, kEnds, kContains}) {
        EXPECT_FALSE(IsRunning("no process has this name", flags)) << flags;
        EXPECT_FALSE(IsRunning(std::string(5000, 'n'), flags)) << flags;
    }
}

TEST(FocusProcess, OfARunningProcess_ReturnsFalse)
{
    const UTF16String name(kThisProgram.begin(), kThisProgram.end());
    ASSERT_TRUE(IsProcessRunning(name, ProcessSearchFlags::kExactMatch));
    EXPECT_FALSE(FocusProcess(name, ProcessSearchFlags::kExactMatch));
}
