#include <ORLOSImageHandle.h>

#include <Platform/Images.h>

#include <boost/shared_ptr.hpp>
#include <memory>
#include <utility>

namespace ORL {

namespace {

class HBITMAPWrapper
{
public:
    explicit HBITMAPWrapper(HBITMAP inBitmap) noexcept : mBitmap(inBitmap) {}
    ~HBITMAPWrapper()
    {
        if (mBitmap != nullptr) {
            Images::Platform::DeleteBitmap_Impl(mBitmap);
        }
    }
    HBITMAPWrapper(const HBITMAPWrapper&) = delete;
    HBITMAPWrapper& operator=(const HBITMAPWrapper&) = delete;

    void Swap(HBITMAPWrapper& ioOther) noexcept { std::swap(mBitmap, ioOther.mBitmap); }
    HBITMAP Get() const noexcept { return mBitmap; }
    HBITMAP Release() noexcept { return std::exchange(mBitmap, nullptr); }

private:
    HBITMAP mBitmap;
};

} // namespace

struct OSImageHandle::Record
{
    boost::shared_ptr<HBITMAPWrapper> mWrapper;
};

OSImageHandle::OSImageHandle() : mRecord(new Record)
{
}

// A local owner holds the bitmap first, so the bitmap is deleted if an allocation fails.
OSImageHandle::OSImageHandle(HBITMAP inBitmap) : mRecord(nullptr)
{
    HBITMAPWrapper owner(inBitmap);
    auto record = std::make_unique<Record>();
    record->mWrapper.reset(new HBITMAPWrapper(nullptr));
    record->mWrapper->Swap(owner);
    mRecord = record.release();
}

OSImageHandle::OSImageHandle(const OSImageHandle& inOther) : mRecord(new Record(*inOther.mRecord))
{
}

OSImageHandle& OSImageHandle::operator=(OSImageHandle& inOther)
{
    mRecord->mWrapper = inOther.mRecord->mWrapper;
    return *this;
}

OSImageHandle::~OSImageHandle()
{
    delete mRecord;
}

bool OSImageHandle::IsValid() const
{
    return mRecord->mWrapper && mRecord->mWrapper->Get() != nullptr;
}

HBITMAP OSImageHandle::GetHBITMAP() const
{
    return mRecord->mWrapper->Get();
}

HBITMAP OSImageHandle::StealHBITMAP()
{
    return mRecord->mWrapper->Release();
}

void OSImageHandle::Swap(OSImageHandle& ioOther)
{
    std::swap(mRecord, ioOther.mRecord);
}

} // namespace ORL
