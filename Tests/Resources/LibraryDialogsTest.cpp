// The library's icon and dialogs, read from its file with the resource readers.
#include "LibraryDialogs.h"
#include "PlugIns.h"

#include <Resources/ResourceReaders.h>

#include <fstream>
#include <iterator>

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

TEST_F(LibraryDialogs, TheirIcon_HasThreeSizesInFiveLanguages)
{
    for (const DialogTexts& texts : kDialogTexts) {
        SCOPED_TRACE(texts.mLanguage);
        const Data group = Find(kIconGroupType, 14000, texts.mLanguage);
        ASSERT_EQ(6u + 3 * 14, group.mSize);
        EXPECT_EQ(1u, NumberAt(group, 2));
        for (const unsigned int i : {0u, 1u, 2u}) {
            const unsigned int entry = 6 + i * 14;
            const unsigned int side = 16 * (i + 1);
            EXPECT_EQ(side, group.mData[entry]);
            const Data icon =
                Find(kIconType, static_cast<unsigned short>(NumberAt(group, entry + 12)), texts.mLanguage);
            EXPECT_EQ(NumberAt(group, entry + 8), icon.mSize);
            EXPECT_EQ(side, NumberAt(icon, 4));
        }
    }
}
