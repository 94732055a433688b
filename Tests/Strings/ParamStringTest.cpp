#include <ORLParamString.h>
#include <ORLString.h>
#include <Strings/Tokenizer.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORL;

namespace {

struct ParseRow
{
    int mLine;
    const char* mFormat;
    std::vector<std::string> mParams;
    Result mResult;
    const char* mText; // the output, or the earlier content if the call fails
};

const ParseRow kParseRows[] = {
    {__LINE__, "%1 of %2", {"3", "4"}, kSuccess, "3 of 4"},
    // the placeholders may be in any order
    {__LINE__, "%2 of %1", {"3", "4"}, kSuccess, "4 of 3"},
    // every parameter must be used
    {__LINE__, "plain", {}, kGeneralFailure, "before"},
    {__LINE__, "%1", {}, kGeneralFailure, "before"},
    {__LINE__, "no placeholders", {"a"}, kGeneralFailure, "before"},
    {__LINE__, "%3", {"a", "b"}, kGeneralFailure, "before"},
    {__LINE__, "%1", {"a", "b"}, kGeneralFailure, "before"},
    // only the first occurrence of a placeholder is replaced; placeholders above the number of parameters stay
    {__LINE__, "%1 %1", {"a"}, kSuccess, "a %1"},
    {__LINE__, "%1 %2 %3", {"a", "b"}, kSuccess, "a b %3"},
    // a placeholder is also found in the inserted text of an earlier parameter
    {__LINE__, "%1 %2", {"%2", "b"}, kSuccess, "b %2"},
    {__LINE__, "%1", {"%2", "b"}, kSuccess, "b"},
    // "%1" matches the start of "%10", even with ten parameters
    {__LINE__, "%10", {"a"}, kSuccess, "a0"},
    {__LINE__,
     "%10 %1 %2 %3 %4 %5 %6 %7 %8 %9",
     {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"},
     kGeneralFailure,
     "before"},
    {__LINE__,
     "%1 %2 %3 %4 %5 %6 %7 %8 %9 %10",
     {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"},
     kSuccess,
     "a b c d e f g h i j"},
    // no escape for a literal "%"
    {__LINE__, "%%1", {"a"}, kSuccess, "%a"},
    {__LINE__, "%01", {"a"}, kGeneralFailure, "before"},
    // empty parameters and an empty format
    {__LINE__, "[%1]", {""}, kSuccess, "[]"},
    {__LINE__, "", {"a"}, kGeneralFailure, "before"},
};

} // namespace

TEST(ParseStdString, EachTemplate_IsFilledByTheRules)
{
    for (const ParseRow& row : kParseRows) {
        StdParamVector params;
        for (const std::string& param : row.mParams) {
            params.push_back(param);
        }
        std::string text = "before";
        EXPECT_EQ(row.mResult, ParseStdString(row.mFormat, params, text)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mText, text) << "row at line " << row.mLine;
    }
}

TEST(ParseString, EachTemplate_IsFilledAsInNarrowText)
{
    for (const ParseRow& row : kParseRows) {
        ParamVector params;
        for (const std::string& param : row.mParams) {
            params.push_back(MakeString(param));
        }
        UTF16String text = MakeString("before");
        EXPECT_EQ(row.mResult, ParseString(MakeString(row.mFormat), params, text)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mText, MakeStdString(text)) << "row at line " << row.mLine;
    }
}

TEST(ParseString, ResultIsTheFormatItself_IsFilledAllTheSame)
{
    UTF16String text = MakeString("<%1>");
    EXPECT_EQ(kSuccess, ParseString(text, {MakeString("x")}, text));
    EXPECT_EQ("<x>", MakeStdString(text));
}

TEST(ParseStdString, FormatWithEmbeddedZero_KeepsWhatIsBehindIt)
{
    std::string text;
    EXPECT_EQ(kSuccess, ParseStdString(std::string("a\0%1", 4), {"x"}, text));
    EXPECT_EQ(std::string("a\0x", 3), text);
}

TEST(SplitString, EachText_GivesItsFirstTwoTokens)
{
    struct Row
    {
        int mLine;
        const char* mText;
        const char* mSeparator;
        const char* mFirst;
        const char* mSecond;
    };
    const Row rows[] = {
        {__LINE__, "a=b", "=", "a", "b"},
        {__LINE__, "a", "=", "a", ""},
        {__LINE__, "a==b", "=", "a", "b"},
        {__LINE__, "a=b=c", "=", "a", "b"},
        {__LINE__, "=b", "=", "", "b"},
        {__LINE__, "a=", "=", "a", ""},
        {__LINE__, "", "=", "", ""},
        {__LINE__, "=", "=", "", ""},
        {__LINE__, "===", "=", "", ""},
        {__LINE__, "a===", "=", "a", ""},
        // only the first unit of a longer separator is skipped
        {__LINE__, "a::b", "::", "a", ":b"},
        {__LINE__, "a::b::c", "::", "a", ":b"},
        // an empty separator matches at every position, so every part is empty
        {__LINE__, "ab", "", "", ""},
    };
    for (const Row& row : rows) {
        UTF16String first = MakeString("before");
        UTF16String second = MakeString("before");
        SplitString(MakeString(row.mText), MakeString(row.mSeparator), first, second);
        EXPECT_EQ(row.mFirst, MakeStdString(first)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mSecond, MakeStdString(second)) << "row at line " << row.mLine;
    }
}

TEST(SplitString, OutputIsTheTextItself_IsCutBeforeItIsOverwritten)
{
    UTF16String text = MakeString("key=value");
    UTF16String second;
    SplitString(text, MakeString("="), text, second);
    EXPECT_EQ("key", MakeStdString(text));
    EXPECT_EQ("value", MakeStdString(second));
}

TEST(Tokenizer, RunsNotSkipped_GiveAnEmptyTokenBetweenSeparators)
{
    const UTF16String text = MakeString("a,,b");
    Tokenizer tokens(text, MakeString(","), Tokenizer::Runs::kKeep);
    EXPECT_EQ("a", MakeStdString(tokens.Next()));
    EXPECT_EQ("", MakeStdString(tokens.Next()));
    EXPECT_EQ("b", MakeStdString(tokens.Next()));
    EXPECT_EQ("", MakeStdString(tokens.Next()));
    EXPECT_EQ("", MakeStdString(tokens.Next())) << "past the last token there are only empty ones";
}

TEST(Tokenizer, SeparatorAtTheEnd_LeavesNoTokenBehindIt)
{
    const UTF16String text = MakeString("a,");
    Tokenizer tokens(text, MakeString(","), Tokenizer::Runs::kKeep);
    EXPECT_EQ("a", MakeStdString(tokens.Next()));
    EXPECT_EQ("", MakeStdString(tokens.Next()));
}

// The search reads eight units at a time. The search must agree with a unit-by-unit search at every position, even
// among units that differ from the separator in one bit.
TEST(Tokenizer, SeparatorAtEachPlaceAmongUnitsThatAreNearlyTheSame_IsFoundWhereItIs)
{
    const unsigned short separators[] = {'=', 0x0001, 0x8000, 0x7FFF, 0xFFFF, 0x0000};
    for (const unsigned short separator : separators) {
        for (unsigned bit = 0; bit < 16; ++bit) {
            const unsigned short other = static_cast<unsigned short>(separator ^ 1u << bit);
            for (std::size_t size = 0; size < 26; ++size) {
                for (std::size_t place = 0; place <= size; ++place) {
                    UTF16String text(size, other);
                    if (place < size) {
                        text[place] = separator;
                    }
                    Tokenizer tokens(text, UTF16String(1, separator), Tokenizer::Runs::kKeep);
                    ASSERT_EQ(place, tokens.Next().size()) << separator << " at " << place << " of " << size;
                    ASSERT_EQ(place < size ? size - place - 1 : 0, tokens.Next().size());
                }
            }
        }
    }
}
