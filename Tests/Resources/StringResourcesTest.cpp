#include "PlugIns.h"

#include <CheckRecorder.h>
#include <ExpectReport.h>

#include <ORLStringResources.h>

#include <map>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr unsigned short kEnglish = 1033;
constexpr unsigned short kGerman = 1031;
constexpr unsigned short kFrench = 1036;
constexpr unsigned short kJapanese = 1041;

using Block = std::vector<unsigned short>;

// Returns a block with strings at the given positions.
Block MakeBlock(const std::map<unsigned int, std::u16string>& inTexts)
{
    Block block;
    for (unsigned int position = 0; position < 16; ++position) {
        const auto text = inTexts.find(position);
        const std::u16string units = text != inTexts.end() ? text->second : std::u16string();
        block.push_back(static_cast<unsigned short>(units.size()));
        block.insert(block.end(), units.begin(), units.end());
    }
    return block;
}

// A collection that has only string tables, and records the requested blocks.
class Tables : public ResourceCollection
{
public:
    std::map<unsigned short, Block> mLocalized;
    std::map<unsigned short, Block> mEnglish;
    int mBytesCut = 0;                        // bytes to remove from the end of each block
    mutable std::vector<unsigned int> mAsked; // block numbers; 0x10000 is added for American English

    void* FindLocalizedResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const override
    {
        return Find(mLocalized, 0, inName, inType, outSize);
    }
    void* FindNonLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                   int& outSize) const override
    {
        return Find(mEnglish, 0x10000, inName, inType, outSize);
    }
    void* LoadResource(const unsigned short*, const unsigned short*, int&) const override { return nullptr; }
    void* LoadResource(short, const UTF16String&, int&) const override { return nullptr; }
    void* LoadFirstResourceOfType(const unsigned short*, int&) const override { return nullptr; }
    void ReleaseResource(void*) const override {}
    OSImageHandle LoadBitmapW(short, bool) override { return OSImageHandle(); }
    OSImageHandle LoadBitmapFromFile(UTF16String, bool) override { return OSImageHandle(); }
    OSImageHandle LoadBitmapWTL(short, bool) override { return OSImageHandle(); }
    void* LoadCursorW(short) const override { return nullptr; }
    HMENU LoadMenuW(short) const override { return nullptr; }

private:
    void* Find(const std::map<unsigned short, Block>& inBlocks, unsigned int inMark, const unsigned short* inName,
               const unsigned short* inType, int& outSize) const
    {
        EXPECT_EQ(MakeResourceID(6), inType);
        const auto number = static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(inName));
        EXPECT_LE(number, 0xFFFFu);
        mAsked.push_back(number | inMark);
        const auto block = inBlocks.find(static_cast<unsigned short>(number));
        if (block == inBlocks.end()) {
            return nullptr;
        }
        outSize = static_cast<int>(2 * block->second.size()) - mBytesCut;
        return const_cast<unsigned short*>(block->second.data());
    }
};

std::string Shown(const ResourceCollection& inCollection, unsigned int inID)
{
    return Show(LoadStringW(inCollection, inID));
}

} // namespace

TEST(StringResources, BlockAndPositionOfIdentifiers)
{
    Tables tables;
    tables.mLocalized[1] = MakeBlock({{0, u"zero"}, {15, u"fifteen"}});
    tables.mLocalized[2] = MakeBlock({{0, u"sixteen"}, {15, u"thirty-one"}});
    tables.mLocalized[0xFFFF] = MakeBlock({{7, u"far"}});
    tables.mLocalized[0] = MakeBlock({{3, u"block 0"}});
    EXPECT_EQ("zero", Shown(tables, 0));
    EXPECT_EQ("fifteen", Shown(tables, 15));
    EXPECT_EQ("sixteen", Shown(tables, 16));
    EXPECT_EQ("thirty-one", Shown(tables, 31));
    EXPECT_EQ("far", Shown(tables, 0xFFFE7));
    EXPECT_EQ("block 0", Shown(tables, 0xFFFF3)) << "the number after the last one is 0";
    EXPECT_EQ((std::vector<unsigned int>{1, 1, 2, 2, 0xFFFF, 0}), tables.mAsked);
}

TEST(StringResources, IdentifiersOf2To20AndAbove_WrapInTheBlockNumber)
{
    Tables tables;
    tables.mLocalized[1] = MakeBlock({{0, u"zero"}, {1, u"one"}});
    EXPECT_EQ("zero", Shown(tables, 1u << 20));
    EXPECT_EQ("one", Shown(tables, (5u << 20) + 1));
    EXPECT_EQ("one", Shown(tables, 0xFFF00001));
}

TEST(StringResources, EmptyTextInTheLocalizedBlock_IsLookedUpInAmericanEnglish)
{
    Tables tables;
    tables.mLocalized[1] = MakeBlock({{0, u"null"}});
    tables.mEnglish[1] = MakeBlock({{0, u"zero"}, {1, u"one"}});
    const CheckRecorder recorder;
    EXPECT_EQ("null", Shown(tables, 0));
    EXPECT_EQ("one", Shown(tables, 1));
    EXPECT_EQ("", Shown(tables, 2)) << "empty in both";
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ((std::vector<unsigned int>{1, 1, 0x10001, 1, 0x10001}), tables.mAsked);
}

TEST(StringResources, NoLocalizedBlock_OneCheckAndThenAmericanEnglish)
{
    Tables tables;
    tables.mEnglish[1] = MakeBlock({{1, u"one"}});
    const CheckRecorder recorder;
    EXPECT_EQ("one", Shown(tables, 1));
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Expression("rsrc != NULL");
}

TEST(StringResources, NoBlockAtAll_TwoChecksAndNoText)
{
    const Tables tables;
    const CheckRecorder recorder;
    UTF16String text = Units(u"before");
    EXPECT_FALSE(LoadStringW(tables, 5, text));
    EXPECT_EQ("before", Show(text));
    EXPECT_EQ(2u, recorder.Reports().size());
}

TEST(StringResources, MissingText_LeavesTheOutputAlone)
{
    Tables tables;
    tables.mLocalized[1] = tables.mEnglish[1] = MakeBlock({{0, u"zero"}});
    UTF16String text = Units(u"before");
    EXPECT_FALSE(LoadStringW(tables, 3, text));
    EXPECT_EQ("before", Show(text));
    std::string narrow = "before";
    EXPECT_FALSE(LoadStdString(tables, 3, narrow));
    EXPECT_EQ("before", narrow);
    EXPECT_EQ("", LoadStdString(tables, 3));
    EXPECT_TRUE(LoadStringW(tables, 0, text));
    EXPECT_EQ("zero", Show(text));
}

TEST(StringResources, LoadStdString_EndsAtTheFirstZero)
{
    Tables tables;
    tables.mLocalized[1] = MakeBlock({{0, std::u16string(u"a\0b", 3)}, {1, u"Gr\u00FC\u00DFe \U0001F3AC"}});
    EXPECT_EQ(3u, LoadStringW(tables, 0).size());
    EXPECT_EQ("a", LoadStdString(tables, 0));
    EXPECT_EQ(u8"Gr\u00FC\u00DFe \U0001F3AC", LoadStdString(tables, 1));
}

// Reading a block that ends before or inside one of its sixteen entries must not access bytes outside it.
TEST(StringResources, CutBlock_IsReportedAndGivesNothing)
{
    const Block whole = MakeBlock({{0, u"zero"}, {2, u"two"}, {15, u"fifteen"}});
    for (int cut = 1; cut < static_cast<int>(2 * whole.size()); ++cut) {
        for (const unsigned int id : {0u, 1u, 2u, 15u}) {
            Tables tables;
            // The block is in memory of exactly its size, so that a sanitizer detects an access outside it.
            tables.mLocalized[1] = Block(whole.begin(), whole.end() - (cut + 1) / 2 + cut % 2);
            tables.mBytesCut = cut % 2;
            tables.mEnglish[1] = MakeBlock({{1, u"one"}});
            const CheckRecorder recorder;
            const std::string text = Shown(tables, id);
            const bool isKnown = text == "zero" || text == "one" || text == "two" || text.empty();
            EXPECT_TRUE(isKnown) << "cut " << cut << ", identifier " << id << ": " << text;
            if (id == 15) {
                EXPECT_EQ("", text) << cut;
                ASSERT_EQ(1u, recorder.Reports().size());
                ExpectReport(recorder.Reports()[0]).Expression("data < dataEnd");
            }
        }
    }
}

TEST(StringResources, LengthThatPointsPastTheBlock_IsReportedAndGivesNothing)
{
    Tables tables;
    tables.mLocalized[1] = MakeBlock({{3, u"three"}});
    tables.mLocalized[1][3] = 0xFFFF;
    const CheckRecorder recorder;
    EXPECT_EQ("", Shown(tables, 3));
    EXPECT_EQ("", Shown(tables, 4));
    EXPECT_EQ(2u, recorder.Reports().size());
}

TEST(StringResources, OfAPlugIn_InEachLanguage)
{
    struct Row
    {
        int mLine;
        unsigned short mLanguage;
        unsigned int mID;
        const char* mText;
    };
    const Row kRows[] = {
        {__LINE__, kEnglish, 0, "zero"},
        {__LINE__, kEnglish, 31, "thirty-one"},
        {__LINE__, kGerman, 0, "null"},
        {__LINE__, kGerman, 1, u8"Gr\u00FC\u00DFe"},
        {__LINE__, kGerman, 31, u8"einunddrei\u00DFig"},
        {__LINE__, kGerman, 40, "forty, in American English alone"}, // German lacks the block
        {__LINE__, kGerman, 65, "only English has this text"},       // German has the block, but not the string
        {__LINE__, kJapanese, 1, u8"\u3053\u3093\u306B\u3061\u306F"},
        {__LINE__, kJapanese, 2, u8"\U0001F3AC"},
        {__LINE__, kJapanese, 15, "fifteen"},
        {__LINE__, kFrench, 1, "neutral one"},
        {__LINE__, kFrench, 15, "fifteen"},
        {__LINE__, kFrench, 200, "neutral alone"},
        {__LINE__, kEnglish, 1000, "forty units of text, neither more nor less"},
    };
    for (const ModulePtr& module :
         {LoadPlugIn("resources_lookup"), LoadModule(FileBeside("resources_lookup_windows.dll"))}) {
        for (const Row& row : kRows) {
            const LanguageScope language(row.mLanguage);
            const CheckRecorder recorder;
            EXPECT_EQ(row.mText, LoadStdString(*module, row.mID)) << "row at line " << row.mLine;
            EXPECT_TRUE(recorder.Reports().empty()) << "row at line " << row.mLine;
        }
    }
}

TEST(StringResources, ResourceModule_IsWhatTheHostSets)
{
    EXPECT_FALSE(GetResourceModule());
    const ModulePtr module = LoadPlugIn("resources_lookup");
    SetResourceModule(module);
    EXPECT_EQ(module.GetPtr(), GetResourceModule().GetPtr());
    EXPECT_EQ(module.GetPtr(), &GetResourceCollection());
    SetResourceModule(GetResourceModule());
    EXPECT_EQ("zero", LoadStdString(GetResourceCollection(), 0));
    SetResourceModule(ModulePtr());
    EXPECT_FALSE(GetResourceModule());
}
