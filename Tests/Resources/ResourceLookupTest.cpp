// Tests which language a lookup finds. The table holds the results of the Windows functions for an American user.
#include "PlugIns.h"

#include <CheckRecorder.h>

#include <ORLStringResources.h>
#include <Resources/ResourceReaders.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr unsigned short kRawData = 10;
constexpr unsigned short kEnglish = 1033;
constexpr unsigned short kGerman = 1031;
constexpr unsigned short kJapanese = 1041;

const unsigned short kAsked[] = {0,    1033, 1031, 1036, 1040, 1041, 1034, 1043, 1053,
                                 1029, 1042, 1045, 1046, 1049, 1055, 2052, 1028};

// One row for each set of languages that a resource has: 1 American English, 2 neutral, 4 German, 8 Japanese. One
// column for each requested language.
struct Row
{
    const char* mNeutral; // result for neutral, which is also the default choice of Windows
    const char* mEnglish;
    const char* mGerman;
    const char* mJapanese;
    const char* mAnyOther;
};

const char en[] = "en";
const char ne[] = "neutral";
const char de[] = "de";
const char ja[] = "ja";
const char no[] = "-";

const Row kRows[16] = {
    {no, no, no, no, no}, //
    {en, en, no, no, no}, // English
    {ne, ne, ne, ne, ne}, // neutral
    {ne, en, ne, ne, ne}, // neutral, English
    {de, no, de, no, no}, // German
    {en, en, de, no, no}, // German, English
    {ne, ne, de, ne, ne}, // German, neutral
    {ne, en, de, ne, ne}, // German, neutral, English
    {ja, no, no, ja, no}, // Japanese
    {en, en, no, ja, no}, // Japanese, English
    {ne, ne, ne, ja, ne}, // Japanese, neutral
    {ne, en, ne, ja, ne}, // Japanese, neutral, English
    {de, no, de, ja, no}, // Japanese, German
    {en, en, de, ja, no}, // Japanese, German, English
    {ne, ne, de, ja, ne}, // Japanese, German, neutral
    {ne, en, de, ja, ne}, // all
};

const char* AnswerTo(const Row& inRow, unsigned short inAsked)
{
    switch (inAsked) {
    case 0: return inRow.mNeutral;
    case kEnglish: return inRow.mEnglish;
    case kGerman: return inRow.mGerman;
    case kJapanese: return inRow.mJapanese;
    default: return inRow.mAnyOther;
    }
}

// A localised lookup tries the language first, then the neutral one.
std::string LocalizedAnswerTo(const Row& inRow, unsigned short inAsked)
{
    const std::string answer = AnswerTo(inRow, inAsked);
    return answer != no ? answer : inRow.mNeutral;
}

using Lookup = void* (Module::*)(const unsigned short*, const unsigned short*, int&) const;

// Returns the result of a lookup, and one "!" for each failed check.
std::string Ask(const Module& inModule, Lookup inLookup, unsigned short inID)
{
    const CheckRecorder recorder;
    int size = -7;
    const void* const data = (inModule.*inLookup)(MakeResourceID(inID), MakeResourceID(kRawData), size);
    EXPECT_TRUE(data != nullptr || size == -7) << "the size of nothing was stored";
    return TextOf(data, size) + std::string(recorder.Reports().size(), '!');
}

void ExpectTheTable(const Module& inModule)
{
    for (unsigned short set = 0; set < 16; ++set) {
        const unsigned short id = static_cast<unsigned short>(100 + set);
        const Row& row = kRows[set];
        for (const unsigned short asked : kAsked) {
            SCOPED_TRACE("set " + std::to_string(set) + ", asked " + std::to_string(asked));
            const LanguageScope language(asked);
            const std::string localized = LocalizedAnswerTo(row, asked);
            EXPECT_EQ(localized != no ? localized : "-!", Ask(inModule, &Module::FindLocalizedResource, id));
            const std::string english = row.mEnglish;
            EXPECT_EQ(english != no ? english : "-!", Ask(inModule, &Module::FindNonLocalizedResource, id));
            EXPECT_EQ(row.mNeutral, Ask(inModule, static_cast<Lookup>(&Module::LoadResource), id));
        }
    }
}

std::vector<unsigned char> ContentsOf(const std::string& inHostPath)
{
    std::ifstream file(inHostPath, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void ExpectTheTable(const Resources::ResourceIndex& inIndex)
{
    using Resources::NameView;
    for (unsigned short set = 0; set < 16; ++set) {
        const NameView name = NameView::OfNumber(static_cast<unsigned short>(100 + set));
        for (const unsigned short asked : kAsked) {
            const Resources::ResourceEntry* const entry =
                inIndex.Find(NameView::OfNumber(kRawData), name, asked, kEnglish);
            EXPECT_EQ(AnswerTo(kRows[set], asked),
                      entry != nullptr ? TextOf(entry->mData, static_cast<int>(entry->mSize)) : no)
                << "set " << set << ", asked " << asked;
        }
    }
}

std::string TextNamed(const Module& inModule, const std::u16string& inType, const std::u16string& inName)
{
    const UTF16String type = Units(inType);
    const UTF16String name = Units(inName);
    return AnswerOf([&](int& outSize) { return inModule.LoadResource(name.c_str(), type.c_str(), outSize); });
}

} // namespace

TEST(ResourceLookup, EveryPresentAndAskedLanguage_InAPlugIn)
{
    ExpectTheTable(*LoadPlugIn("resources_lookup"));
}

TEST(ResourceLookup, EveryPresentAndAskedLanguage_InAWindowsModule)
{
    ExpectTheTable(*LoadModule(FileBeside("resources_lookup_windows.dll")));
}

TEST(ResourceLookup, EveryPresentAndAskedLanguage_ByTheReaders)
{
    const std::vector<unsigned char> res = ContentsOf(FileBeside("resources_lookup.res"));
    Resources::ResourceIndex fromRes;
    EXPECT_EQ(Resources::ReadOutcome::kComplete, Resources::ReadResFile({res.data(), res.size()}, fromRes));
    fromRes.Finish();
    ExpectTheTable(fromRes);
    const std::vector<unsigned char> dll = ContentsOf(FileBeside("resources_lookup_windows.dll"));
    Resources::ResourceIndex fromDll;
    EXPECT_EQ(Resources::ReadOutcome::kComplete, Resources::ReadPEFile({dll.data(), dll.size()}, fromDll));
    fromDll.Finish();
    ExpectTheTable(fromDll);
}

TEST(ResourceLookup, NamesWithoutRegardToCaseAndNumbersAsText)
{
    struct NameRow
    {
        int mLine;
        const char16_t* mType;
        const char16_t* mName;
        const char* mAnswer;
    };
    const NameRow kNames[] = {
        {__LINE__, u"SHELF", u"FIRSTNAME", "by text"},
        {__LINE__, u"Shelf", u"FirstName", "by text"},
        {__LINE__, u"shelf", u"mixedcase", "in mixed case"},
        {__LINE__, u"shelf", u"#7", "by number"},
        {__LINE__, u"#10", u"#300", "three hundred"},
        {__LINE__, u"#10", u"#0300", "three hundred"},
        {__LINE__, u"#10", u"#300x", "three hundred"},
        {__LINE__, u"#10", u"# 300", "three hundred"},
        {__LINE__, u"#10", u"#+300", "three hundred"},
        {__LINE__, u"#10", u"#12c", "-"},
        {__LINE__, u"#10", u"#", "-"},
        {__LINE__, u"#10", u"#65836", "-"},
        {__LINE__, u"#10", u"#-300", "-"},
        {__LINE__, u"#10", u"300", "-"},
        {__LINE__, u"shelf", u"firstname ", "-"},
        {__LINE__, u"shelf", u"first", "-"},
        {__LINE__, u"shelves", u"firstname", "-"},
    };
    for (const ModulePtr& module :
         {LoadPlugIn("resources_lookup"), LoadModule(FileBeside("resources_lookup_windows.dll"))}) {
        for (const NameRow& row : kNames) {
            EXPECT_EQ(row.mAnswer, TextNamed(*module, row.mType, row.mName)) << "row at line " << row.mLine;
        }
    }
}

TEST(ResourceLookup, DataHasItsSize)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    int size = 0;
    ASSERT_NE(nullptr, module->LoadResource(MakeResourceID(300), MakeResourceID(kRawData), size));
    EXPECT_EQ(13, size);
    const void* const data = module->LoadResource(MakeResourceID(301), MakeResourceID(kRawData), size);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(2, size);
    EXPECT_EQ(std::string(2, '\0'), TextOf(data, size));
}

TEST(ResourceLookup, LoadResource_IdentifierAndTypeAsText_ReadsTheTypeUpToItsZero)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    int size = 0;
    UTF16String type = Units(u"Shelf");
    EXPECT_EQ("by number", AnswerOf([&](int& outSize) { return module->LoadResource(7, type, outSize); }));
    type += static_cast<unsigned short>(0);
    type += 'x';
    EXPECT_EQ("by number", AnswerOf([&](int& outSize) { return module->LoadResource(7, type, outSize); }));
    EXPECT_EQ(nullptr, module->LoadResource(8, type, size));
}

TEST(ResourceLookup, LoadFirstResourceOfType_TextsBeforeNumbers)
{
    const LanguageScope language(kEnglish);
    for (const ModulePtr& module :
         {LoadPlugIn("resources_lookup"), LoadModule(FileBeside("resources_lookup_windows.dll"))}) {
        int size = 0;
        const UTF16String drawer = Units(u"drawer");
        EXPECT_EQ("five",
                  AnswerOf([&](int& outSize) { return module->LoadFirstResourceOfType(drawer.c_str(), outSize); }));
        EXPECT_EQ("en", AnswerOf([&](int& outSize) {
                      return module->LoadFirstResourceOfType(MakeResourceID(kRawData), outSize);
                  }));
        const UTF16String shelf = Units(u"SHELF");
        EXPECT_EQ("by text",
                  AnswerOf([&](int& outSize) { return module->LoadFirstResourceOfType(shelf.c_str(), outSize); }));
        size = 5;
        EXPECT_EQ(nullptr, module->LoadFirstResourceOfType(MakeResourceID(99), size));
        EXPECT_EQ(0, size);
    }
}

TEST(ResourceLookup, TwoModulesWithEqualNames_EachAnswersForItself)
{
    const LanguageScope language(0);
    ModulePtr twin = LoadPlugIn("resources_twin");
    const ModulePtr lookup = LoadPlugIn("resources_lookup");
    int size = 0;
    EXPECT_EQ("twin", AnswerOf([&](int& outSize) {
                  return twin->FindLocalizedResource(MakeResourceID(115), MakeResourceID(kRawData), outSize);
              }));
    const void* const data = lookup->FindLocalizedResource(MakeResourceID(115), MakeResourceID(kRawData), size);
    EXPECT_EQ("neutral", TextOf(data, size));
    twin = ModulePtr();
    EXPECT_EQ("neutral", TextOf(data, size));
    EXPECT_EQ(data, lookup->FindLocalizedResource(MakeResourceID(115), MakeResourceID(kRawData), size));
}

namespace {

std::string RawData(const Module& inModule, Lookup inLookup, unsigned short inID)
{
    return AnswerOf(
        [&](int& outSize) { return (inModule.*inLookup)(MakeResourceID(inID), MakeResourceID(kRawData), outSize); });
}

// Performs each kind of lookup once. Returns the number of wrong results.
int LookUpEverything(const Module& inModule)
{
    int wrong = 0;
    wrong += RawData(inModule, &Module::FindLocalizedResource, 115) != de;
    wrong += RawData(inModule, &Module::FindNonLocalizedResource, 115) != en;
    wrong += RawData(inModule, static_cast<Lookup>(&Module::LoadResource), 115) != ne;
    wrong += TextNamed(inModule, u"shelf", u"FirstName") != "by text";
    const UTF16String drawer = Units(u"drawer");
    wrong +=
        AnswerOf([&](int& outSize) { return inModule.LoadFirstResourceOfType(drawer.c_str(), outSize); }) != "five";
    wrong += LoadStdString(inModule, 0) != "null";
    wrong += inModule.LoadCursorW(3) == nullptr;
    return wrong;
}

// Loads, queries and unloads a module with the same resource names. Returns the number of wrong results.
int LoadTheTwin()
{
    const ModulePtr twin = LoadPlugIn("resources_twin");
    return (RawData(*twin, &Module::FindLocalizedResource, 115) != "twin") + (LoadStdString(*twin, 1) != "twin one");
}

} // namespace

TEST(ResourceLookup, EightThreads_LookUpWhileAModuleWithEqualNamesComesAndGoes)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    const LanguageScope language(kGerman);
    ASSERT_EQ(0, LookUpEverything(*module));
    ASSERT_EQ(0, LoadTheTwin());
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 100; ++round) {
                wrong += i == 0 ? LoadTheTwin() : 0;
                wrong += LookUpEverything(*module);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
}
