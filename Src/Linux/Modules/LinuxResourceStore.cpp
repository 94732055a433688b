#include "LinuxResourceStore.h"

#include "LinuxUserLanguage.h"

#include <Images/BitmapReader.h>
#include <ORLNativeBitmap.h>
#include <Resources/CursorReader.h>

#include <cstring>

namespace ORL {
namespace Modules {

namespace {

using namespace Resources;

constexpr unsigned short kCursorType = 1;
constexpr unsigned short kBitmapType = 2;
constexpr unsigned short kCursorGroupType = 12;

Bytes DataOf(const ResourceEntry& inEntry) noexcept
{
    Bytes data;
    data.mData = inEntry.mData;
    data.mSize = inEntry.mSize;
    return data;
}

} // namespace

const ResourceEntry* ResourceStore::Find(const unsigned short* inType, const unsigned short* inName,
                                         unsigned short inLanguage) const
{
    NameView type;
    NameView name;
    if (!NameView::Parse(inType, type) || !NameView::Parse(inName, name)) {
        return nullptr;
    }
    return mIndex.Find(type, name, inLanguage, ORL::Linux::UserLanguage());
}

std::unique_ptr<Resources::Linux::CursorPicture> ResourceStore::ReadCursor(unsigned short inID) const
{
    const unsigned short user = ORL::Linux::UserLanguage();
    const auto find = [&](unsigned short inType, unsigned short inName) {
        return mIndex.Find(NameView::OfNumber(inType), NameView::OfNumber(inName), 0, user);
    };
    const ResourceEntry* const group = find(kCursorGroupType, inID);
    unsigned short chosen = 0;
    if (group == nullptr || !ChooseCursor(DataOf(*group), chosen)) {
        return nullptr;
    }
    const ResourceEntry* const cursor = find(kCursorType, chosen);
    auto picture = std::make_unique<Resources::Linux::CursorPicture>();
    return cursor != nullptr && Resources::ReadCursor(DataOf(*cursor), *picture) ? std::move(picture) : nullptr;
}

const Resources::Linux::CursorPicture* ResourceStore::FindCursor(unsigned short inID) const
{
    const ORL::MutexLock lock(mCursorsLock);
    const auto known = mCursors.find(inID);
    if (known != mCursors.end()) {
        return known->second.get();
    }
    return mCursors.emplace(inID, ReadCursor(inID)).first->second.get();
}

HBITMAP ResourceStore::MakeBitmap(unsigned short inID) const
{
    const ResourceEntry* const entry =
        mIndex.Find(NameView::OfNumber(kBitmapType), NameView::OfNumber(inID), 0, ORL::Linux::UserLanguage());
    Images::PixelPicture picture;
    if (entry == nullptr || !Images::ReadBitmap(DataOf(*entry), picture)) {
        return nullptr;
    }
    const HBITMAP bitmap =
        Images::Linux::CreateBitmap(static_cast<int>(picture.mWidth), static_cast<int>(picture.mHeight));
    Images::Linux::BitmapInfo info{};
    if (Images::Linux::GetBitmapInfo(bitmap, info)) {
        std::memcpy(info.mPixels, picture.mPixels.data(), picture.mPixels.size() * sizeof(std::uint32_t));
    }
    return bitmap;
}

} // namespace Modules
} // namespace ORL
