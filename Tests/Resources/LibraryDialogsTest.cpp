// Tests the icon and dialogs that the resource readers find in the library's file.
#include "LibraryDialogs.h"
#include "PlugIns.h"

#include <Resources/ResourceReaders.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

using ORL::Resources::NameView;
using ORL::Resources::ReadOutcome;
using ORL::Resources::ResourceEntry;
using ORL::Resources::ResourceIndex;
using namespace ORLTest;

namespace {

using Data = ORL::Resources::Bytes;

constexpr unsigned short kIconType = 3;
constexpr unsigned short kDialogType = 5;
constexpr unsigned short kIconGroupType = 14;

class LibraryDialogs : public testing::Test
{
protected:
    LibraryDialogs()
    {
        std::ifstream file(FileBeside(ORL_LIBRARY_FILE), std::ios::binary);
        mContents.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        Data contents;
        contents.mData = mContents.data();
        contents.mSize = mContents.size();
        if (ORL::Resources::ReadPEFile(contents, mIndex) == ReadOutcome::kRefused) {
            EXPECT_EQ(ReadOutcome::kComplete, ORL::Resources::ReadELFFile(contents, mIndex));
        }
        mIndex.Finish();
    }

    Data Find(unsigned short inType, unsigned short inName, unsigned short inLanguage)
    {
        const ResourceEntry* const entry =
            mIndex.FindExact(NameView::OfNumber(inType), NameView::OfNumber(inName), inLanguage);
        EXPECT_NE(nullptr, entry) << inType << " " << inName << " " << inLanguage;
        Data bytes;
        if (entry != nullptr) {
            bytes.mData = entry->mData;
            bytes.mSize = entry->mSize;
        }
        return bytes;
    }

    const std::vector<ResourceEntry>& Entries() const { return mIndex.Entries(); }

private:
    std::vector<unsigned char> mContents;
    ResourceIndex mIndex;
};

unsigned int NumberAt(const Data& inBytes, std::size_t inPlace)
{
    return inBytes.mData[inPlace] + 256u * inBytes.mData[inPlace + 1];
}

} // namespace

TEST_F(LibraryDialogs, OfDebugEvents_SayTheSameInFiveLanguages)
{
    for (const DialogTexts& texts : kDialogTexts) {
        SCOPED_TRACE(texts.mLanguage);
        ExpectEventDialog(Find(kDialogType, 14400, texts.mLanguage), texts);
    }
}

TEST_F(LibraryDialogs, OfErrors_SayTheSameInFiveLanguages)
{
    for (const DialogTexts& texts : kDialogTexts) {
        SCOPED_TRACE(texts.mLanguage);
        ExpectErrorDialog(Find(kDialogType, 14401, texts.mLanguage), texts);
    }
}

// The icon file and the icon resource hold the same pictures. The directory of the file contains the offsets of the
// pictures; that of the resource contains their numbers.
TEST_F(LibraryDialogs, TheirIcon_HasThePicturesOfItsFileInFiveLanguages)
{
    std::ifstream stream(std::filesystem::u8path(ORL_LIBRARY_ICON), std::ios::binary);
    const std::vector<unsigned char> file((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    ASSERT_GT(file.size(), 6u + 3 * 16);
    Data icons;
    icons.mData = file.data();
    icons.mSize = file.size();
    for (const DialogTexts& texts : kDialogTexts) {
        SCOPED_TRACE(texts.mLanguage);
        const Data group = Find(kIconGroupType, 14000, texts.mLanguage);
        ASSERT_EQ(6u + 3 * 14, group.mSize);
        EXPECT_TRUE(std::equal(group.mData, group.mData + 6, file.data()));
        for (const unsigned int i : {0u, 1u, 2u}) {
            const unsigned int entry = 6 + i * 14;
            const unsigned int inFile = 6 + i * 16;
            EXPECT_EQ(16 * (i + 1), group.mData[entry]);
            EXPECT_TRUE(std::equal(group.mData + entry, group.mData + entry + 12, file.data() + inFile));
            const Data icon =
                Find(kIconType, static_cast<unsigned short>(NumberAt(group, entry + 12)), texts.mLanguage);
            const std::size_t start = NumberAt(icons, inFile + 12);
            ASSERT_LE(start + icon.mSize, file.size());
            EXPECT_EQ(NumberAt(icons, inFile + 8), icon.mSize);
            EXPECT_TRUE(std::equal(icon.mData, icon.mData + icon.mSize, file.data() + start));
        }
    }
}

TEST_F(LibraryDialogs, AndTheirIcon_AreAllOfTheLibrarysResources)
{
    std::map<std::pair<unsigned int, unsigned int>, int> counts; // number of resources by type and language
    for (const ResourceEntry& entry : Entries()) {
        EXPECT_FALSE(entry.mType.mIsText);
        ++counts[{entry.mType.mID, entry.mLanguage}];
    }
    EXPECT_EQ(15u, counts.size());
    for (const DialogTexts& texts : kDialogTexts) {
        EXPECT_EQ(3, (counts[{kIconType, texts.mLanguage}])) << texts.mLanguage;
        EXPECT_EQ(2, (counts[{kDialogType, texts.mLanguage}])) << texts.mLanguage;
        EXPECT_EQ(1, (counts[{kIconGroupType, texts.mLanguage}])) << texts.mLanguage;
    }
}
