// Tests the readers of resource files on damaged or malicious files. Each file is in memory of exactly its size, so
// that a sanitizer detects an access outside it.
#include "../../Fuzz/ResourceFuzzTarget.h"
#include "PlugIns.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

using namespace ORL::Resources;
using namespace ORLTest;

namespace {

using Contents = std::vector<unsigned char>;

Contents ReadBeside(const std::string& inName)
{
    std::ifstream file(FileBeside(inName), std::ios::binary);
    Contents contents((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_FALSE(contents.empty()) << inName;
    return contents;
}

struct Kind
{
    const char* mFile;
    ORLFuzz::ResourceReader mRead;
};

const Kind kKinds[] = {
    {"resources_lookup.res", &ReadResFile},
    {"resources_lookup_windows.dll", &ReadPEFile},
#if !defined(ORL_NO_LINUX_MODULE)
    {"resources_lookup" ORL_PLUG_IN_SUFFIX, &ReadELFFile},
#endif
};

// A copy in memory of exactly its size.
std::unique_ptr<unsigned char[]> ExactCopy(const Contents& inContents, std::size_t inSize)
{
    std::unique_ptr<unsigned char[]> copy(new unsigned char[inSize != 0 ? inSize : 1]);
    std::memcpy(copy.get(), inContents.data(), inSize);
    return copy;
}

void ExpectSafe(const Kind& inKind, const unsigned char* inData, std::size_t inSize, const char* inWhat,
                std::size_t inNumber)
{
    const char* const fault = ORLFuzz::CheckResources(inKind.mRead, inData, inSize);
    ASSERT_EQ(nullptr, fault) << inKind.mFile << ", " << inWhat << " " << inNumber << ": " << fault;
}

// Collects the bytes of numbers and strings.
class Writer
{
public:
    template <class Number>
    Writer& Put(Number inNumber)
    {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(&inNumber);
        mBytes.insert(mBytes.end(), bytes, bytes + sizeof(inNumber));
        return *this;
    }
    Writer& PadTo(std::size_t inSize)
    {
        mBytes.resize(std::max(inSize, mBytes.size()));
        return *this;
    }

    Contents mBytes;
};

constexpr std::uint32_t kSectionAddress = 0x1000;

// Returns a module with one section, which begins with the resource directory.
Contents MakeModule(const Contents& inSection)
{
    Writer file;
    file.Put(std::uint16_t{0x5A4D}).PadTo(0x3C).Put(std::uint32_t{0x40});
    file.Put(std::uint32_t{0x4550}).Put(std::uint16_t{0x8664}).Put(std::uint16_t{1});
    file.PadTo(0x40 + 20).Put(std::uint16_t{240}).Put(std::uint16_t{0x2022});
    const std::size_t optional = file.mBytes.size();
    file.Put(std::uint16_t{0x20B}).PadTo(optional + 108).Put(std::uint32_t{16});
    file.PadTo(optional + 112 + 16).Put(kSectionAddress).Put(static_cast<std::uint32_t>(inSection.size()));
    file.PadTo(optional + 240 + 8);
    file.Put(static_cast<std::uint32_t>(inSection.size())).Put(kSectionAddress);
    file.Put(static_cast<std::uint32_t>(inSection.size())).Put(std::uint32_t{0x400});
    file.PadTo(0x400);
    file.mBytes.insert(file.mBytes.end(), inSection.begin(), inSection.end());
    return file.mBytes;
}

void PutDirectory(Writer& ioWriter, std::uint16_t inTexts, std::uint16_t inNumbers)
{
    ioWriter.Put(std::uint64_t{0}).Put(std::uint32_t{0}).Put(inTexts).Put(inNumbers);
}

ReadOutcome ReadModule(const Contents& inSection, ResourceIndex& outIndex)
{
    const Contents file = MakeModule(inSection);
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[file.size()]);
    std::memcpy(copy.get(), file.data(), file.size());
    EXPECT_EQ(nullptr, ORLFuzz::CheckResources(&ReadPEFile, copy.get(), file.size()));
    ORL::Resources::Bytes bytes;
    bytes.mData = copy.get();
    bytes.mSize = file.size();
    const ReadOutcome outcome = ReadPEFile(bytes, outIndex);
    outIndex.Finish();
    return outcome;
}

} // namespace

TEST(ResourceReaders, EveryByteFlipped_IsReadWithoutAFault)
{
    for (const Kind& kind : kKinds) {
        const Contents whole = ReadBeside(kind.mFile);
        const auto changed = ExactCopy(whole, whole.size());
        for (std::size_t i = 0; i < whole.size(); ++i) {
            for (const int change : {0xFF, 0x01, 0x80}) {
                changed[i] = static_cast<unsigned char>(whole[i] ^ change);
                ASSERT_NO_FATAL_FAILURE(ExpectSafe(kind, changed.get(), whole.size(), "byte", i));
            }
            changed[i] = whole[i];
        }
    }
}

TEST(ResourceReaders, EveryLengthCut_IsReadWithoutAFault)
{
    for (const Kind& kind : kKinds) {
        const Contents whole = ReadBeside(kind.mFile);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const auto cut = ExactCopy(whole, size);
            ASSERT_NO_FATAL_FAILURE(ExpectSafe(kind, cut.get(), size, "size", size));
        }
    }
}

TEST(ResourceReaders, EachRefusesTheOthersFiles)
{
    for (const Kind& kind : kKinds) {
        const Contents whole = ReadBeside(kind.mFile);
        ORL::Resources::Bytes bytes;
        bytes.mData = whole.data();
        bytes.mSize = whole.size();
        for (const Kind& other : kKinds) {
            ResourceIndex index;
            EXPECT_EQ(&kind == &other ? ReadOutcome::kComplete : ReadOutcome::kRefused, other.mRead(bytes, index));
        }
    }
}

TEST(ResourceReaders, ResFileCutInAnEntry_KeepsTheEntriesBeforeIt)
{
    const Contents whole = ReadBeside("resources_lookup.res");
    ORL::Resources::Bytes bytes;
    bytes.mData = whole.data();
    bytes.mSize = whole.size();
    ResourceIndex all;
    ReadResFile(bytes, all);
    bytes.mSize = whole.size() - 40;
    ResourceIndex most;
    EXPECT_EQ(ReadOutcome::kPartial, ReadResFile(bytes, most));
    EXPECT_LT(most.Entries().size(), all.Entries().size());
    EXPECT_GT(most.Entries().size(), all.Entries().size() / 2);
}

TEST(ResourceReaders, DirectoryThatLeadsToItself_Ends)
{
    Writer section;
    PutDirectory(section, 0, 1);
    section.Put(std::uint32_t{1}).Put(std::uint32_t{0x80000000});
    ResourceIndex index;
    EXPECT_EQ(ReadOutcome::kPartial, ReadModule(section.mBytes, index));
    EXPECT_TRUE(index.Entries().empty());
}

// Each of many entries refers to the same table of many entries. Without a limit the number of steps would
// grow with the cube of the number of entries.
TEST(ResourceReaders, WideDirectoriesThatShareOneTable_EndInTime)
{
    constexpr std::uint16_t kCount = 60000;
    Writer section;
    PutDirectory(section, 0, kCount);
    for (std::uint32_t i = 0; i < kCount; ++i) {
        section.Put(i).Put(std::uint32_t{0x80000000});
    }
    ResourceIndex index;
    EXPECT_EQ(ReadOutcome::kPartial, ReadModule(section.mBytes, index));
}

// Each of many entries has the same long name. Without a limit the copies of the name would exhaust memory.
TEST(ResourceReaders, EntriesThatShareOneLongName_TakeNoMoreMemoryThanTheFile)
{
    constexpr std::uint16_t kCount = 20000;
    constexpr std::uint32_t kText = 16 + 8 * std::uint32_t{kCount};
    Writer section;
    PutDirectory(section, kCount, 0);
    for (std::uint32_t i = 0; i < kCount; ++i) {
        section.Put(std::uint32_t{0x80000000} | kText).Put(std::uint32_t{0x80000000});
    }
    section.Put(std::uint16_t{60000}).PadTo(kText + 2 + 120000);
    ResourceIndex index;
    EXPECT_EQ(ReadOutcome::kPartial, ReadModule(section.mBytes, index));
}

TEST(ResourceReaders, NamesAndDataOutsideOfTheSection_AreLeftOut)
{
    struct Row
    {
        int mLine;
        std::uint32_t mName;
        std::uint32_t mTable;
        std::uint32_t mData;
        std::uint32_t mSize;
        std::size_t mCount;
    };
    const Row kRows[] = {
        {__LINE__, 7, 0x80000018, kSectionAddress + 88, 4, 1},
        {__LINE__, 7, 0x80000018, kSectionAddress + 88, 0, 1},
        {__LINE__, 7, 0x80000018, kSectionAddress + 88, 5, 0}, // one byte too many
        {__LINE__, 7, 0x80000018, kSectionAddress + 88, 0xFFFFFFFF, 0},
        {__LINE__, 7, 0x80000018, 0xFFFFFFFF, 4, 0},
        {__LINE__, 7, 0x80000018, kSectionAddress - 1, 4, 0},
        {__LINE__, 7, 0x18, kSectionAddress + 88, 4, 0}, // data where a table belongs
        {__LINE__, 7, 0xFFFFFFFF, kSectionAddress + 88, 4, 0},
        {__LINE__, 0x80000059, 0x80000018, kSectionAddress + 88, 4, 0}, // a name that begins beyond the end
        {__LINE__, 0x80000058, 0x80000018, kSectionAddress + 88, 4, 0}, // a name that is longer than the section
        {__LINE__, 0x10007, 0x80000018, kSectionAddress + 88, 4, 0},    // an identifier of more than 16 bits
    };
    for (const Row& row : kRows) {
        Writer section;
        PutDirectory(section, 0, 1);
        section.Put(row.mName).Put(row.mTable);
        PutDirectory(section, 0, 1);
        section.Put(std::uint32_t{1}).Put(std::uint32_t{0x80000030});
        PutDirectory(section, 0, 1);
        section.Put(std::uint32_t{1033}).Put(std::uint32_t{0x48});
        section.Put(row.mData).Put(row.mSize).Put(std::uint64_t{0});
        section.Put(std::uint32_t{0x61626364});
        ASSERT_EQ(92u, section.mBytes.size());
        ResourceIndex index;
        const ReadOutcome outcome = ReadModule(section.mBytes, index);
        EXPECT_EQ(row.mCount, index.Entries().size()) << "row at line " << row.mLine;
        EXPECT_EQ(row.mCount == 1 ? ReadOutcome::kComplete : ReadOutcome::kPartial, outcome)
            << "row at line " << row.mLine;
    }
}

TEST(ResourceReaders, MillionEntries_AreAllFound)
{
    constexpr std::uint32_t kCount = 1000000;
    Writer file;
    file.Put(std::uint32_t{0}).Put(std::uint32_t{32}).Put(0x0000FFFFu).Put(0x0000FFFFu).PadTo(32);
    file.mBytes.reserve(32 + std::size_t{kCount} * 32);
    for (std::uint32_t i = 0; i < kCount; ++i) {
        file.Put(std::uint32_t{0}).Put(std::uint32_t{32});
        file.Put(0x0000FFFFu | (1 + i / 50000) << 16).Put(0x0000FFFFu | (i % 50000) << 16);
        file.Put(std::uint32_t{0}).Put(std::uint16_t{0}).Put(std::uint16_t{1033}).Put(std::uint64_t{0});
    }
    ORL::Resources::Bytes bytes;
    bytes.mData = file.mBytes.data();
    bytes.mSize = file.mBytes.size();
    ResourceIndex index;
    EXPECT_EQ(ReadOutcome::kComplete, ReadResFile(bytes, index));
    index.Finish();
    EXPECT_EQ(kCount, index.Entries().size());
    for (std::uint32_t i = 0; i < kCount; i += 997) {
        EXPECT_NE(nullptr, index.FindExact(NameView::OfNumber(static_cast<unsigned short>(1 + i / 50000)),
                                           NameView::OfNumber(static_cast<unsigned short>(i % 50000)), 1033));
    }
    EXPECT_EQ(nullptr, index.FindExact(NameView::OfNumber(21), NameView::OfNumber(0), 1033));
}

TEST(ResourceReaders, OfTwoEntriesWithOneName_TheFirstStays)
{
    ResourceIndex index;
    const unsigned char first = 1;
    const unsigned char second = 2;
    const StoredName name = index.Store(NameView::OfNumber(5));
    index.Add(name, name, 0, &first, 1);
    index.Add(name, name, 0, &second, 1);
    index.Finish();
    ASSERT_EQ(1u, index.Entries().size());
    EXPECT_EQ(&first, index.Entries()[0].mData);
}

TEST(ResourceReaders, OfAnEmptyIndex_NothingIsFound)
{
    ResourceIndex index;
    index.Finish();
    EXPECT_EQ(nullptr, index.Find(NameView::OfNumber(1), NameView::OfNumber(1), 0, 1033));
    EXPECT_EQ(nullptr, index.FindFirstOfType(NameView::OfNumber(1)));
}

TEST(ResourceReaders, SublanguagesOfTheHomePlatform)
{
    // Languages of one resource in any order, and the language that the lookup finds; 0xFFFF if it finds none.
    struct Row
    {
        int mLine;
        std::vector<unsigned short> mPresent;
        unsigned short mAsked;
        unsigned short mUser;
        unsigned short mAnswer;
    };
    const Row kRows[] = {
        {__LINE__, {7}, 0x0407, 1033, 7},      // found for each sublanguage
        {__LINE__, {7}, 0x0C07, 1033, 7},      //
        {__LINE__, {0x0407}, 7, 1033, 0xFFFF}, // a lookup for the neutral language does not find a sublanguage
        {__LINE__, {0x0807}, 0x0407, 1033, 0xFFFF},
        {__LINE__, {7, 0x0407}, 0x0407, 1033, 0x0407},
        {__LINE__, {9, 0x040C}, 0x0809, 1033, 9},
        {__LINE__, {9, 0x040C}, 0, 1033, 9},           // the neutral form of the user's language
        {__LINE__, {0x0407, 0x040C}, 0, 1033, 0x0407}, // the lookup finds the first language
        {__LINE__, {0x0407, 0x040C}, 0, 0x040C, 0x040C},
        {__LINE__, {0x0409, 0x0407}, 0, 0x040C, 0x0409},
        {__LINE__, {0x0400}, 0, 1033, 0x0400},
        {__LINE__, {0x0400}, 0x0409, 1033, 0xFFFF},
        {__LINE__, {0x0407}, 0x0800, 1033, 0x0407},
        {__LINE__, {0x007F}, 0x007F, 1033, 0x007F},
        {__LINE__, {0x007F}, 0x0409, 1033, 0xFFFF},
    };
    for (const Row& row : kRows) {
        ResourceIndex index;
        const unsigned char byte = 0;
        const StoredName name = index.Store(NameView::OfNumber(5));
        for (const unsigned short language : row.mPresent) {
            index.Add(name, name, language, &byte, 1);
        }
        index.Finish();
        const ResourceEntry* const entry =
            index.Find(NameView::OfNumber(5), NameView::OfNumber(5), row.mAsked, row.mUser);
        EXPECT_EQ(row.mAnswer, entry != nullptr ? entry->mLanguage : 0xFFFF) << "row at line " << row.mLine;
    }
}
