// Floor: System
// The interface to the strings, tables, pictures and menus of a module.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>
#include <ORLOSImageHandle.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace ORL {

/// Converts a numeric resource type or name to the form that the lookups expect: a pointer whose value is the number
/// and which is never dereferenced.
inline const unsigned short* MakeResourceID(unsigned short inID) noexcept
{
    return reinterpret_cast<const unsigned short*>(static_cast<std::uintptr_t>(inID));
}

/// The interface to a module's resources. Module implements this interface.
///
/// Types and names are results of MakeResourceID, or zero-terminated strings, which are case-insensitive. A
/// string of "#" and decimal digits denotes that number. Sizes are in bytes.
///
/// Owner:    the collection owns the data that lookups return. The data is read-only, and valid until the collection is
///           destroyed.
/// Threads:  depends on the implementation; see Module.
/// Failure:  lookups return null. Lookups throw std::bad_alloc.
class ORL_API ResourceCollection
{
public:
    virtual ~ResourceCollection();

    /// Finds a resource in the current language (GetLanguageID), otherwise in the neutral language. Returns the data
    /// and stores its size in outSize. If the resource does not exist, fires an assertion and returns null with outSize
    /// unchanged.
    virtual void* FindLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                        int& outSize) const = 0;

    /// Same as FindLocalizedResource for American English (1033), regardless of the current language.
    virtual void* FindNonLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                           int& outSize) const = 0;

    /// Finds a resource in the language that the platform selects. If the resource does not exist, returns null with
    /// outSize unchanged and fires no assertion.
    virtual void* LoadResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const = 0;

    /// Same as the other LoadResource, with a number as the name and a string as the type. The type ends at its first
    /// zero unit.
    virtual void* LoadResource(short inID, const UTF16String& inType, int& outSize) const = 0;

    /// Finds the first resource of a type, in the current language if it exists in that language. String names precede
    /// numbers. Returns null with outSize 0 if there is no resource of the type.
    virtual void* LoadFirstResourceOfType(const unsigned short* inType, int& outSize) const = 0;

    /// Releases data that a lookup returned. Callers must release all data, although in Module this does nothing.
    virtual void ReleaseResource(void* inData) const = 0;

    /// Loads the picture inID: if there is a resource of type "PNG" with this number, decodes it and flips it
    /// vertically; otherwise loads the bitmap resource with this number, without flipping. Looks up the PNG as
    /// FindLocalizedResource does if inLocalized is true, otherwise as LoadResource does. Premultiplies the pixels of a
    /// PNG by alpha. The result is not valid if neither resource can be found and decoded. Throws std::bad_alloc. On
    /// Windows the host must have started GDI+. On Linux ORLNativeBitmap.h declares the functions that read the bitmap.
    virtual OSImageHandle LoadBitmapW(short inID, bool inLocalized) = 0;

    /// Loads a PNG file, flipped vertically, from the folder "PNG/" in the directory registered as "application". The
    /// second parameter is ignored. The result holds a null bitmap if the file cannot be read or decoded. Throws
    /// std::bad_alloc.
    virtual OSImageHandle LoadBitmapFromFile(UTF16String inPath, bool) = 0;

    /// Same as LoadBitmapW, but does not flip the picture.
    virtual OSImageHandle LoadBitmapWTL(short inID, bool inLocalized) = 0;

    /// Loads a cursor in the language that the platform selects. Returns the native handle, which the collection owns,
    /// or null. On Linux GetCursorPicture in ORLResources.h reads the cursor.
    virtual void* LoadCursorW(short inID) const = 0;

    /// Loads a menu in the current language. The caller must destroy the menu. If the menu does not exist, fires an
    /// assertion and returns null. Returns null if the menu cannot be read.
    virtual HMENU LoadMenuW(short inID) const = 0;

protected:
    ResourceCollection() = default;
    ResourceCollection(const ResourceCollection&) = default;
    ResourceCollection& operator=(const ResourceCollection&) = default;
};

} // namespace ORL
