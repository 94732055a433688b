#include <ORLDirectoryRegistry.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ORLString.h>

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

UTF16String Units(const std::string& inText)
{
    return MakeString(UTF8String(inText.begin(), inText.end()));
}

std::string Find(const std::string& inSymbol)
{
    return MakeStdString(DirectoryRegistry::FindDirectory(Units(inSymbol)));
}

// Registers directories and removes them in the destructor: the process has only one table.
class Registered
{
public:
    Registered() = default;
    Registered(std::initializer_list<std::pair<std::string, std::string>> inDirectories)
    {
        for (const auto& [symbol, path] : inDirectories) {
            Add(symbol, path);
        }
    }

    ~Registered()
    {
        for (const std::string& symbol : mSymbols) {
            DirectoryRegistry::UnregisterDirectory(Units(symbol));
        }
    }

    void Add(const std::string& inSymbol, const std::string& inPath)
    {
        DirectoryRegistry::RegisterDirectory(Units(inPath), Units(inSymbol));
        mSymbols.push_back(inSymbol);
    }

private:
    std::vector<std::string> mSymbols;
};

// Returns the expansion of a pattern while "Root" is "C:\Data".
std::string Expand(const std::string& inPattern)
{
    const Registered directories{{"Root", "C:\\Data"}, {"Pattern", inPattern}};
    return Find("Pattern");
}

std::string UnregisteredMessage(const std::string& inSymbol)
{
    return "The symbolic directory " + inSymbol + " is not registered.\r\n";
}

} // namespace

TEST(DirectoryRegistry, References_AreExpandedAtTheLookup)
{
    const CheckRecorder recorder;
    {
        const Registered directories{{"Root", "C:\\Data"}, {"Sub", "$(Root)\\Sub"}};
        EXPECT_EQ("C:\\Data\\Sub", Find("Sub"));
    }
    {
        const Registered directories{{"Sub", "$(Root)\\Sub"}, {"Root", "C:\\Data"}};
        EXPECT_EQ("C:\\Data\\Sub", Find("Sub"));
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(DirectoryRegistry, ReferenceToWhatIsNoLongerRegistered_StaysAsWritten)
{
    const CheckRecorder recorder;
    const Registered directories{{"Root", "C:\\Data"}, {"Sub", "$(Root)\\Sub"}};
    DirectoryRegistry::UnregisterDirectory(Units("Root"));
    EXPECT_EQ("$(Root)\\Sub", Find("Sub"));
    EXPECT_TRUE(recorder.Reports().empty()) << "the text is not empty, and so a valid path";
}

TEST(DirectoryRegistry, Patterns_ExpandByTheirGrammar)
{
    struct Row
    {
        int mLine;
        std::string mPattern;
        std::string mPath;
    };
    const Row rows[] = {
        {__LINE__, "C:\\a", "C:\\a"},
        {__LINE__, "$(Root)", "C:\\Data"},
        {__LINE__, "a$(Root)b$(Root)c", "aC:\\DatabC:\\Datac"},
        {__LINE__, "$x(Root)\\Sub", "C:\\Data\\Sub"},
        {__LINE__, "$a b$c(Root)", "C:\\Data"},
        {__LINE__, "$x(Missing)", "$x(Missing)"},
        {__LINE__, "$(Missing)\\$(Root)", "$(Missing)\\C:\\Data"},
        {__LINE__, "$(root)", "$(root)"},
        {__LINE__, "$( Root)", "$( Root)"},
        {__LINE__, "$()", "$()"},
        {__LINE__, "$x()y", "$x()y"},
        {__LINE__, "$(()", "$(()"},
        {__LINE__, "$(Root))", "C:\\Data)"},
        {__LINE__, "$", "$"},
        {__LINE__, "a$", "a$"},
        {__LINE__, "a$b", "a$b"},
        {__LINE__, "a$(b", "a$(b"},
        {__LINE__, "a$x(b", "a$x(b"},
        {__LINE__, "$)a(Root)", "C:\\Data"},
        {__LINE__, "$(Ro$(Root)", "$(Ro$(Root)"},
        {__LINE__, " \n\r\t\fC:\\a", "C:\\a"},
        {__LINE__, " $(Root)", "C:\\Data"},
        {__LINE__, "\vC:\\a", "\vC:\\a"},
        {__LINE__, "C:\\a \t", "C:\\a \t"},
        {__LINE__, "C:\\\xC3\xA4\xF0\x9F\x8E\xAC", "C:\\\xC3\xA4\xF0\x9F\x8E\xAC"},
    };
    for (const Row& row : rows) {
        const CheckRecorder recorder;
        EXPECT_EQ(row.mPath, Expand(row.mPattern)) << "row at line " << row.mLine;
        EXPECT_TRUE(recorder.Reports().empty()) << "row at line " << row.mLine;
    }
}

TEST(DirectoryRegistry, PatternOfWhiteSpace_IsReportedAsNotRegistered)
{
    const CheckRecorder recorder;
    EXPECT_EQ("", Expand(" \t\r\n\f"));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Message(UnregisteredMessage("Pattern"));
}

TEST(DirectoryRegistry, NestedEmptyDirectory_IsCheckedByItself)
{
    const CheckRecorder recorder;
    const Registered directories{{"Blank", " "}, {"Outer", "[$(Blank)]"}};
    EXPECT_EQ("[]", Find("Outer"));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Message(UnregisteredMessage("Blank"));
}

TEST(DirectoryRegistry, UnknownSymbol_IsEmptyAfterAnAssertion)
{
    const CheckRecorder recorder;
    EXPECT_EQ("", Find("N\xC3\xB6pe"));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Kind(CheckReport::kAssert).Message(UnregisteredMessage("N\xC3\xB6pe"));
}

TEST(DirectoryRegistry, SecondRegistration_ReplacesTheFirst)
{
    const Registered directories{{"Root", "C:\\Data"}, {"Root", "D:\\Other"}};
    EXPECT_EQ("D:\\Other", Find("Root"));
}

TEST(DirectoryRegistry, Symbols_DifferByCase)
{
    const Registered directories{{"Root", "C:\\Data"}, {"ROOT", "D:\\Other"}};
    EXPECT_EQ("C:\\Data", Find("Root"));
    EXPECT_EQ("D:\\Other", Find("ROOT"));
}

TEST(DirectoryRegistry, UnregisteringAnUnknownSymbol_DoesNothing)
{
    const CheckRecorder recorder;
    const Registered directories{{"Root", "C:\\Data"}};
    DirectoryRegistry::UnregisterDirectory(Units("Missing"));
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ("C:\\Data", Find("Root"));
}

TEST(DirectoryRegistry, Cycles_AreReportedAndStayAsWritten)
{
    struct Row
    {
        int mLine;
        std::vector<std::pair<std::string, std::string>> mDirectories;
        std::string mPath; // expansion of "A"
        std::size_t mReports;
    };
    const Row rows[] = {
        {__LINE__, {{"A", "$(A)"}}, "$(A)", 1},
        {__LINE__, {{"A", "[$(A)$(A)]"}}, "[$(A)$(A)]", 2},
        {__LINE__, {{"A", "a$(B)"}, {"B", "b$x(A)"}}, "ab$x(A)", 1},
        {__LINE__, {{"A", "$(B)$(B)"}, {"B", "$(C)$(C)"}, {"C", "$(A)"}}, "$(A)$(A)$(A)$(A)", 4},
        {__LINE__, {{"A", "$(B)$(C)"}, {"B", "$(C)"}, {"C", "c"}}, "cc", 0}, // C is repeated, but not recursive
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        const CheckRecorder recorder;
        Registered directories;
        for (const auto& [symbol, path] : row.mDirectories) {
            directories.Add(symbol, path);
        }
        EXPECT_EQ(row.mPath, Find("A"));
        EXPECT_EQ(row.mReports, recorder.Reports(CheckReport::kAssert).size());
    }
}

TEST(DirectoryRegistry, ChainOfReferences_HasALimit)
{
    constexpr int kLinks = 1000;
    Registered directories;
    for (int link = 0; link < kLinks; ++link) {
        directories.Add("Link" + std::to_string(link), "$(Link" + std::to_string(link + 1) + ")");
    }
    directories.Add("Link" + std::to_string(kLinks), "C:\\end");
    {
        const CheckRecorder recorder;
        EXPECT_EQ("C:\\end", Find("Link" + std::to_string(kLinks - 64)));
        EXPECT_TRUE(recorder.Reports().empty());
    }
    const CheckRecorder recorder;
    EXPECT_EQ("$(Link65)", Find("Link0"));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kAssert).size());
}

// Compares expansions with those of a second implementation of the grammar, a state machine that reads unit by unit.
TEST(DirectoryRegistry, RandomPatterns_AgreeWithASecondReading)
{
    const auto expandUnitByUnit = [](const std::string& inPattern) {
        std::string output;
        std::string prefix;
        std::string symbol;
        enum { kSkipping, kLiteral, kPrefix, kSymbol } state = kSkipping;
        for (const char unit : inPattern) {
            if (state == kSkipping && std::string(" \n\r\t\f").find(unit) != std::string::npos) {
                continue;
            }
            switch (state) {
            case kSkipping:
            case kLiteral:
                state = unit == '$' ? kPrefix : kLiteral;
                prefix.clear();
                output += unit == '$' ? "" : std::string(1, unit);
                break;
            case kPrefix:
                state = unit == '(' ? kSymbol : kPrefix;
                symbol.clear();
                prefix += unit == '(' ? "" : std::string(1, unit);
                break;
            case kSymbol:
                if (unit == ')') {
                    output += symbol == "a" ? "<A>" : "$" + prefix + "(" + symbol + ")";
                    state = kLiteral;
                } else {
                    symbol += unit;
                }
                break;
            }
        }
        if (state == kPrefix) {
            output += "$" + prefix;
        } else if (state == kSymbol) {
            output += "$" + prefix + "(" + symbol;
        }
        return output;
    };
    const CheckRecorder recorder;
    const Registered directories{{"a", "<A>"}};
    std::mt19937 random(20261122);
    const std::string alphabet = "a$() \tb\v";
    for (int round = 0; round < 20000; ++round) {
        std::string pattern;
        for (std::size_t length = 1 + random() % 12; length > 0; --length) {
            pattern += alphabet[random() % alphabet.size()];
        }
        const Registered itself{{"Pattern", pattern}};
        ASSERT_EQ(expandUnitByUnit(pattern), Find("Pattern")) << pattern;
    }
}
