#include <ORLResourceFile.h>

#include <Images/BitmapReader.h>
#include <Images/PictureLoader.h>
#include <ORLFile.h>
#include <ORLPathUtils.h>
#include <Resources/DialogTemplate.h>
#include <Resources/MenuTemplate.h>
#include <Resources/ResourceReaders.h>
#include <Resources/StringBlock.h>

#include <algorithm>
#include <cstring>

namespace ORL {
namespace Resources {

namespace {

constexpr unsigned short kBitmapType = 2;
constexpr unsigned short kMenuType = 4;
constexpr unsigned short kDialogType = 5;
constexpr unsigned short kAmericanEnglish = 1033;
constexpr unsigned __int64 kLargestFile = 0x7FFFFFFF;

Result ReadWhole(const UTF16String& inPath, std::vector<unsigned char>& outContents)
{
    if (PathUtils::IsDirectory(inPath)) {
        return kAccessDenied;
    }
    File file;
    const Result opened = File::Open(inPath, FileAccessFlags::kFileAccess_Read, file);
    if (!ResultSucceeded(opened)) {
        return opened;
    }
    const unsigned __int64 size = file.SizeOnDisk();
    if (size > kLargestFile) {
        return kGeneralFailure;
    }
    outContents.resize(static_cast<std::size_t>(size));
    std::size_t done = 0;
    while (done < outContents.size()) {
        unsigned int count = 0;
        const Result read =
            file.Read(outContents.data() + done, static_cast<unsigned int>(outContents.size() - done), count);
        if (!ResultSucceeded(read)) {
            return read;
        }
        if (count == 0) {
            break;
        }
        done += count;
    }
    outContents.resize(done); // another process may have truncated the file
    return kSuccess;
}

FileName NameOf(const ResourceIndex& inIndex, const StoredName& inName)
{
    FileName name{inName.mIsText, inName.mID, UTF16String()};
    if (inName.mIsText) {
        name.mText.assign(inIndex.Text(inName), inName.mCount);
    }
    return name;
}

Bytes BytesOf(const FileEntry& inEntry) noexcept
{
    Bytes bytes;
    bytes.mData = inEntry.mData;
    bytes.mSize = inEntry.mSize;
    return bytes;
}

UTF16String TextAt(const StringBlock& inBlock)
{
    UTF16String text(inBlock.Length(), 0);
    if (!text.empty()) {
        std::memcpy(&text[0], inBlock.Text(), 2 * text.size());
    }
    return text;
}

struct Reader
{
    ResourceFile::Format mFormat;
    ReadOutcome (*mRead)(const Bytes&, ResourceIndex&);
};

constexpr Reader kReaders[] = {
    {ResourceFile::kCompiledFile, &ReadResFile},
    {ResourceFile::kWindowsModule, &ReadPEFile},
    {ResourceFile::kLinuxModule, &ReadELFFile},
};

} // namespace

struct ORL_LOCAL ResourceFile::PrivateImpl
{
    std::vector<unsigned char> mContents;
    ResourceIndex mIndex;
    std::vector<FileEntry> mEntries; // entries in the order of the index
    Format mFormat = kNone;
    bool mIsDamaged = false;

    void Read()
    {
        Bytes contents;
        contents.mData = mContents.data();
        contents.mSize = mContents.size();
        for (const Reader& reader : kReaders) {
            const ReadOutcome outcome = reader.mRead(contents, mIndex);
            if (outcome != ReadOutcome::kRefused) {
                mFormat = reader.mFormat;
                mIsDamaged = outcome == ReadOutcome::kPartial;
                break;
            }
        }
        mIndex.Finish();
        mEntries.reserve(mIndex.Entries().size());
        for (const ResourceEntry& entry : mIndex.Entries()) {
            mEntries.push_back(
                {NameOf(mIndex, entry.mType), NameOf(mIndex, entry.mName), entry.mLanguage, entry.mData, entry.mSize});
        }
    }

    const FileEntry* Find(const NameView& inType, const NameView& inName, unsigned short inLanguage) const
    {
        const ResourceEntry* const entry = mIndex.Find(inType, inName, inLanguage, kAmericanEnglish);
        return entry != nullptr ? &mEntries[static_cast<std::size_t>(entry - mIndex.Entries().data())] : nullptr;
    }

    const FileEntry* FindLocalized(const NameView& inType, const NameView& inName, unsigned short inLanguage) const
    {
        const FileEntry* const entry = Find(inType, inName, inLanguage);
        return entry != nullptr ? entry : Find(inType, inName, 0);
    }
};

ResourceFile::ResourceFile() : mImpl(new PrivateImpl)
{
}

ResourceFile::~ResourceFile() = default;

Result ResourceFile::Open(const UTF16String& inPath)
{
    const Result read = ReadWhole(inPath, mImpl->mContents);
    if (!ResultSucceeded(read)) {
        return read;
    }
    mImpl->Read();
    return mImpl->mFormat != kNone ? kSuccess : kGeneralFailure;
}

ResourceFile::Format ResourceFile::GetFormat() const
{
    return mImpl->mFormat;
}

bool ResourceFile::IsDamaged() const
{
    return mImpl->mIsDamaged;
}

const std::vector<FileEntry>& ResourceFile::GetEntries() const
{
    return mImpl->mEntries;
}

const FileEntry* ResourceFile::FindLocalized(const unsigned short* inName, const unsigned short* inType,
                                             unsigned short inLanguage) const
{
    NameView type;
    NameView name;
    return NameView::Parse(inType, type) && NameView::Parse(inName, name) ? mImpl->FindLocalized(type, name, inLanguage)
                                                                          : nullptr;
}

bool ResourceFile::FindString(unsigned int inID, unsigned short inLanguage, UTF16String& outText,
                              unsigned short& outLanguage) const
{
    const NameView type = NameView::OfNumber(kStringType);
    const NameView name = NameView::OfNumber(BlockOfString(inID));
    for (const FileEntry* const entry :
         {mImpl->FindLocalized(type, name, inLanguage), mImpl->Find(type, name, kAmericanEnglish)}) {
        if (entry == nullptr) {
            continue;
        }
        StringBlock block(entry->mData, entry->mSize);
        block.Skip(inID % kStringsInBlock);
        if (!block.HasEntry()) {
            return false;
        }
        if (block.Length() != 0) {
            outText = TextAt(block);
            outLanguage = entry->mLanguage;
            return true;
        }
    }
    return false;
}

bool ResourceFile::FindPicture(unsigned short inID, unsigned short inLanguage, FilePicture& outPicture) const
{
    NameView png;
    NameView::Parse(TVX_UTF16("PNG"), png);
    const NameView name = NameView::OfNumber(inID);
    const FileEntry* const file = mImpl->FindLocalized(png, name, inLanguage);
    const FileEntry* const bitmap = mImpl->FindLocalized(NameView::OfNumber(kBitmapType), name, inLanguage);
    Images::PixelPicture picture;
    if ((file == nullptr || !Images::DecodePicture(BytesOf(*file), picture))
        && (bitmap == nullptr || !Images::ReadBitmap(BytesOf(*bitmap), picture))) {
        return false;
    }
    outPicture.mWidth = picture.mWidth;
    outPicture.mHeight = picture.mHeight;
    outPicture.mPixels.swap(picture.mPixels);
    return true;
}

bool ReadStringBlock(const FileEntry& inEntry, std::vector<UTF16String>& outTexts)
{
    std::vector<UTF16String> texts;
    StringBlock block(inEntry.mData, inEntry.mSize);
    for (unsigned int i = 0; i < kStringsInBlock; ++i) {
        if (!block.HasEntry()) {
            return false;
        }
        texts.push_back(TextAt(block));
        block.Skip(1);
    }
    outTexts.swap(texts);
    return true;
}

bool IsWellFormed(const FileEntry& inEntry)
{
    if (inEntry.mType.mIsText) {
        return true;
    }
    std::vector<UTF16String> texts;
    Dialog dialog;
    switch (inEntry.mType.mID) {
    case kMenuType: return ReadMenuTemplate(BytesOf(inEntry)) != nullptr;
    case kDialogType: return ReadDialogTemplate(BytesOf(inEntry), dialog);
    case kStringType: return ReadStringBlock(inEntry, texts);
    default: return true;
    }
}

} // namespace Resources
} // namespace ORL
