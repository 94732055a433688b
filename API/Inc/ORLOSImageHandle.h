// Floor: System
// The shared owner of a native bitmap, as the bitmap loaders of a module return it.
//
//   ORL::OSImageHandle picture(module->LoadBitmapWTL(100, true));
//   if (picture.IsValid()) {
//       Draw(picture.GetHBITMAP());
//   }
//
// Linux: a native bitmap is a block of 32-bit pixels; ORLNativeBitmap.h has the functions that make, read and delete
// one.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>

namespace ORL {

/// Copies share one bitmap, which the last of them deletes. The share count is atomic, so that copies may live on
/// several threads; one handle belongs to one thread at a time.
class ORL_API OSImageHandle
{
public:
    /// Holds nothing, not even a null bitmap. Throws std::bad_alloc.
    OSImageHandle();

    /// Takes ownership of a bitmap, which may be null. If it throws std::bad_alloc, the bitmap is deleted.
    explicit OSImageHandle(HBITMAP inBitmap);

    /// Shares the other's bitmap. Throws std::bad_alloc.
    OSImageHandle(const OSImageHandle& inOther);

    /// Shares the other's bitmap and drops its own share. Never throws.
    OSImageHandle& operator=(OSImageHandle& inOther);

    /// Drops its share.
    ~OSImageHandle();

    /// Whether there is a bitmap, and it is not null.
    bool IsValid() const;

    /// The bitmap, which stays the handles'. Not to be called on a handle that holds nothing.
    HBITMAP GetHBITMAP() const;

    /// Returns the bitmap, which the caller now deletes. All handles that share it hold null afterwards. Not to be
    /// called on a handle that holds nothing.
    HBITMAP StealHBITMAP();

    /// Exchanges what two handles hold. Never throws.
    void Swap(OSImageHandle& ioOther);

private:
    struct Record;
    Record* mRecord;
};

} // namespace ORL
