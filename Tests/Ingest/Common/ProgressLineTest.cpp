// Tests the progress line and the number of columns that its characters take.
#include <IngestProgress.h>
#include <ProgressLine.h>
#include <Text.h>
#include <TextWidth.h>

#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

using namespace orl;

namespace {

/// Captures standard output during its lifetime.
class CapturedOutput
{
public:
    CapturedOutput() : mEarlier(std::cout.rdbuf(mText.rdbuf())) {}
    ~CapturedOutput() { std::cout.rdbuf(mEarlier); }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// Returns what was written since the last call.
    std::string Take()
    {
        const std::string text = mText.str();
        mText.str(std::string());
        return text;
    }

private:
    std::ostringstream mText;
    std::streambuf* const mEarlier;
};

} // namespace

TEST(TextWidth, WideJoiningAndBrokenCharacters_TakeTheirColumns)
{
    struct Row
    {
        int mLine;
        std::string mText;
        std::size_t mColumns;
    };
    const Row rows[] = {
        {__LINE__, "", 0},
        {__LINE__, "plain", 5},
        {__LINE__, "caf\u00E9", 4},
        {__LINE__, "cafe\u0301", 4},
        {__LINE__, "\u6F22\u5B57", 4},
        {__LINE__, "\uD55C", 2},
        {__LINE__, "\u1112\u1161\u11AB", 2}, // the syllable of the previous row, decomposed
        {__LINE__, "\U0001F3AC", 2},
        {__LINE__, "a\u200Bb", 2},
        {__LINE__, "\xE9", 1},
        {__LINE__, "\xE6\xBC", 2}, // a truncated character
        {__LINE__, "\xC0\x80", 2},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mColumns, ColumnsOf(row.mText)) << "row at line " << row.mLine;
    }
}

TEST(TextWidth, StartAndTail_CutNoCharacterAndLeaveNoMarkAlone)
{
    const std::string text = "a\u6F22e\u0301\u5B57";
    EXPECT_EQ("", PrefixOfWidth(text, 0));
    EXPECT_EQ("a", PrefixOfWidth(text, 2));
    EXPECT_EQ("a\u6F22", PrefixOfWidth(text, 3));
    EXPECT_EQ("a\u6F22e\u0301", PrefixOfWidth(text, 5));
    EXPECT_EQ(text, PrefixOfWidth(text, 6));
    EXPECT_EQ("", SuffixOfWidth(text, 1));
    EXPECT_EQ("\u5B57", SuffixOfWidth(text, 2));
    EXPECT_EQ("e\u0301\u5B57", SuffixOfWidth(text, 3));
    EXPECT_EQ(text, SuffixOfWidth(text, 6));
    EXPECT_EQ("...\u5B57", TruncateFront(text, 5));
    EXPECT_EQ("..", TruncateFront(text, 2));
    EXPECT_EQ(text + "  ", PaddedTo(8, text));
}

TEST(FitProgress, PartsOfTheHighestRank_GoFirst)
{
    const std::vector<ProgressPart> parts{{"one", 0}, {"two", 3}, {"three", 1}, {"four", 2}};
    EXPECT_EQ("one   two   three   four", FitProgress(parts, 24));
    EXPECT_EQ("one   three   four", FitProgress(parts, 23));
    EXPECT_EQ("one   three", FitProgress(parts, 17));
    EXPECT_EQ("one", FitProgress(parts, 10));
    EXPECT_EQ("on", FitProgress(parts, 2));
    EXPECT_EQ("a?b", FitProgress({{"a\nb", 0}}, 9));
}

// Escape sequences are not used, because a console that prints instead of interpreting them would wrap the line.
TEST(ProgressLine, OverwritesTheLongerTextWithBlanks)
{
    CapturedOutput output;
    {
        ProgressLine line(true);
        line.Show("one\u6F22");
        EXPECT_EQ("\rone\u6F22", output.Take());
        line.Show("two");
        EXPECT_EQ("\rtwo  ", output.Take());
        line.Show("three");
        EXPECT_EQ("\rthree", output.Take());
        line.Clear();
        EXPECT_EQ("\r     \r", output.Take());
        line.Clear();
        EXPECT_EQ("", output.Take());
        line.Show("a");
        EXPECT_EQ("\ra", output.Take()) << "the line was empty";
    }
    EXPECT_EQ("\r \r", output.Take()) << "the end of the line object clears the line";
}

TEST(ProgressLine, TextWiderThanTheTerminal_IsCutAndClearedToItsWidth)
{
    const std::size_t available = ProgressLine::AvailableColumns();
    CapturedOutput output;
    ProgressLine line(true);
    line.Show(std::string(available + 1, 'x'));
    EXPECT_EQ('\r' + std::string(available, 'x'), output.Take());
    line.Clear();
    EXPECT_EQ('\r' + std::string(available, ' ') + '\r', output.Take());
}

TEST(ProgressLine, ThatIsNotShown_WritesNothing)
{
    CapturedOutput output;
    {
        ProgressLine line(false);
        EXPECT_FALSE(line.IsDue());
        line.Show("one");
    }
    EXPECT_EQ("", output.Take());
}

TEST(IngestProgress, ShowsShareRateAndTimeLeft)
{
    EXPECT_EQ("[############------------]  50 %   1.0 GB of 2.0 GB   100.0 MB/s   0:10 left   3 of 7 files",
              ProgressText(2000000000, 4000000000, 3, 7, 10, 199));
    EXPECT_EQ("[------------------------]   0 %   0 B of 2.0 GB   0 of 7 files",
              ProgressText(0, 4000000000, 0, 7, 0, 199));
    EXPECT_EQ("[########################] 100 %   0 B of 0 B   7 of 7 files", ProgressText(0, 0, 7, 7, 1, 199));
}

TEST(IngestProgress, InANarrowTerminal_KeepsWhatMattersMost)
{
    EXPECT_EQ("[######------]  50 %   1.0 GB of 2.0 GB   100.0 MB/s   0:10 left   3 of 7 files",
              ProgressText(2000000000, 4000000000, 3, 7, 10, 79));
    EXPECT_EQ(" 50 %   1.0 GB of 2.0 GB   0:10 left", ProgressText(2000000000, 4000000000, 3, 7, 10, 39));
    EXPECT_EQ(" 50 %", ProgressText(2000000000, 4000000000, 3, 7, 10, 5));
    for (std::size_t columns = 1; columns < 200; ++columns) {
        EXPECT_GE(columns, ColumnsOf(ProgressText(987654321012, 1987654321012, 98765, 123456, 86400, columns)))
            << columns;
    }
}
