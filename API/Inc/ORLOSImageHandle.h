// Floor: System
// A shared handle to a native bitmap, as returned by a module's bitmap loaders.
//
//   ORL::OSImageHandle picture(module->LoadBitmapWTL(100, true));
//   if (picture.IsValid()) {
//       Draw(picture.GetHBITMAP());
//   }
//
// On Linux a native bitmap is a block of 32-bit pixels. ORLNativeBitmap.h declares the functions that create, read and
// delete it.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>

namespace ORL {

/// A shared handle to one native bitmap.
///
/// Owner:    copies share one bitmap; the last copy deletes it.
/// Threads:  not thread-safe: one thread at a time per object. Copies on different threads are safe, because the
///           reference count is atomic.
/// Failure:  constructors throw std::bad_alloc; the other functions never throw.
class ORL_API OSImageHandle
{
public:
    /// Constructs an empty handle, which holds no bitmap, not even a null one. Throws std::bad_alloc.
    OSImageHandle();

    /// Takes ownership of a bitmap, which may be null. If it throws std::bad_alloc, the bitmap is deleted.
    explicit OSImageHandle(HBITMAP inBitmap);

    /// Shares the bitmap of the other handle. Throws std::bad_alloc.
    OSImageHandle(const OSImageHandle& inOther);

    /// Shares the bitmap of the other handle and releases its share in the previous one. Never throws.
    OSImageHandle& operator=(OSImageHandle& inOther);

    /// Releases its share in the bitmap.
    ~OSImageHandle();

    /// Returns whether the handle holds a bitmap that is not null.
    bool IsValid() const;

    /// Returns the bitmap, which the handles continue to own. Must not be called on an empty handle.
    HBITMAP GetHBITMAP() const;

    /// Returns the bitmap and transfers its ownership to the caller. All handles that share it then hold null. Must not
    /// be called on an empty handle.
    HBITMAP StealHBITMAP();

    /// Exchanges the bitmaps of two handles. Never throws.
    void Swap(OSImageHandle& ioOther);

private:
    struct Record;
    Record* mRecord;
};

} // namespace ORL
