// Tests directories registered from a resource.
#include <ORLDirectoryRegistry.h>

#include <CheckRecorder.h>
#include <ORLString.h>
#include <OneResource.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr short kTable = 4711;

UTF16String Units(const std::string& inText)
{
    return MakeString(UTF8String(inText.begin(), inText.end()));
}

OneResource Table(const std::string& inText)
{
    return OneResource(kTable, Units("ORLDIRECTORYTABLE"), inText);
}

// Removes a symbol and returns its pattern, or an empty string if the symbol is not registered.
std::string FindAndUnregister(const std::string& inSymbol)
{
    const CheckRecorder recorder;
    const UTF16String symbol = Units(inSymbol);
    const std::string pattern = MakeStdString(DirectoryRegistry::FindDirectory(symbol));
    DirectoryRegistry::UnregisterDirectory(symbol);
    return pattern;
}

} // namespace

TEST(DirectoryTables, EachLine_RegistersADirectory)
{
    const CheckRecorder recorder;
    const OneResource table = Table("Root=C:\\Data\nSub=$(Root)\\Sub\n\xC3\x84=D:\\\xC3\x96");
    DirectoryRegistry::RegisterDirectories(table, kTable);
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(1, table.Releases());
    EXPECT_EQ("C:\\Data\\Sub", FindAndUnregister("Sub"));
    EXPECT_EQ("C:\\Data", FindAndUnregister("Root"));
    EXPECT_EQ("D:\\\xC3\x96", FindAndUnregister("\xC3\x84"));
}

TEST(DirectoryTables, Lines_AreReadByTheirFormat)
{
    struct Row
    {
        int mLine;
        std::string mText;
        std::string mSymbol;
        std::string mPath;
    };
    const Row rows[] = {
        {__LINE__, "A=B", "A", "B"},
        {__LINE__, "A=B\n", "A", "B"},
        {__LINE__, "A==B", "A", "B"},
        {__LINE__, "A====B", "A", "B"},
        {__LINE__, "A=B=C", "A", "B"},
        {__LINE__, "A=B=", "A", "B"},
        {__LINE__, " \tA \t=\t B \t", "A", "B"},
        {__LINE__, "A A=B B", "A A", "B B"},
        {__LINE__, "A=B\r\n", "A", "B\r"},
        {__LINE__, "A=B \r\n", "A", "B \r"},
        {__LINE__, "# no comment=B", "# no comment", "B"},
        {__LINE__, std::string("A=B\0X=Y", 7), "A", "B"},
    };
    for (const Row& row : rows) {
        const CheckRecorder recorder;
        DirectoryRegistry::RegisterDirectories(Table(row.mText), kTable);
        EXPECT_TRUE(recorder.Reports().empty()) << "row at line " << row.mLine;
        EXPECT_EQ(row.mPath, FindAndUnregister(row.mSymbol)) << "row at line " << row.mLine;
    }
    EXPECT_EQ("", FindAndUnregister("X")) << "the text ends at its first zero byte";
}

TEST(DirectoryTables, LineWithoutSymbolOrPath_EndsTheTableThere)
{
    for (const std::string& line : {std::string(""), std::string("B"), std::string("=B"), std::string("B="),
                                    std::string(" =B"), std::string("B= ")}) {
        CheckRecorder recorder;
        recorder.mThrow = true;
        const OneResource table = Table("A=1\n" + line + "\nC=3\n");
        EXPECT_THROW(DirectoryRegistry::RegisterDirectories(table, kTable), CheckRecorder::ContractError) << line;
        EXPECT_EQ(0, table.Releases()) << line;
        EXPECT_EQ("1", FindAndUnregister("A")) << line;
        EXPECT_EQ("", FindAndUnregister("C")) << line;
    }
}

TEST(DirectoryTables, EmptyTable_RegistersNothing)
{
    const CheckRecorder recorder;
    const OneResource table = Table("");
    DirectoryRegistry::RegisterDirectories(table, kTable);
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(1, table.Releases());
}

TEST(DirectoryTables, MissingTable_IsAnAssertionAndNothingElse)
{
    const CheckRecorder recorder;
    const OneResource table = Table("A=1");
    DirectoryRegistry::RegisterDirectories(table, kTable + 1);
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kAssert).size());
    EXPECT_EQ(0, table.Releases());
    EXPECT_EQ("", FindAndUnregister("A"));
}
