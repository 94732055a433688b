// Floor: System
// Where strings, tables, pictures and menus come from.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>
#include <ORLOSImageHandle.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace ORL {

/// A resource type or name that is a number, in the form in which the lookups take it: the number stands in the
/// pointer's value, and nothing is read through the pointer.
inline const unsigned short* MakeResourceID(unsigned short inID) noexcept
{
    return reinterpret_cast<const unsigned short*>(static_cast<std::uintptr_t>(inID));
}

/// The abstract source of a module's resources.
///
/// Types and names are what MakeResourceID returns, or a zero-terminated text. Texts compare without regard to case. A
/// text of "#" and decimal digits is that number.
///
/// Data stays the collection's: it may be read, not written, until the collection is destroyed. Sizes are bytes.
class ORL_API ResourceCollection
{
public:
    virtual ~ResourceCollection();

    /// Finds a resource in the current language (GetLanguageID), else in the neutral one.
    /// Returns its data, and its size in outSize. Returns null after an assertion if there is none; outSize is then
    /// untouched.
    virtual void* FindLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                        int& outSize) const = 0;

    /// Finds a resource in American English (1033), whatever the current language is. Otherwise as
    /// FindLocalizedResource.
    virtual void* FindNonLocalizedResource(const unsigned short* inName, const unsigned short* inType,
                                           int& outSize) const = 0;

    /// Finds a resource in the language of the platform's own choice. Returns null without a report if there is none;
    /// outSize is then untouched.
    virtual void* LoadResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const = 0;

    /// The same for a number as name and a text as type, which is read up to its first zero.
    virtual void* LoadResource(short inID, const UTF16String& inType, int& outSize) const = 0;

    /// Finds the first resource of a type, in the current language where it has that one. Texts come before numbers.
    /// Returns null, with outSize 0, if there is none of the type.
    virtual void* LoadFirstResourceOfType(const unsigned short* inType, int& outSize) const = 0;

    /// Ends the use of data that a lookup returned. Callers owe it, though a module has nothing to do here.
    virtual void ReleaseResource(void* inData) const = 0;

    /// Loads a picture with its rows exchanged, the last one on top: the resource of type "PNG", else the bitmap resource
    /// of that number with its rows in order. The PNG resource is found as FindLocalizedResource does if inLocalized is
    /// true, else as LoadResource does. Pixels of a PNG are premultiplied by alpha. The result is not valid if there is
    /// neither, or if neither can be decoded. Throws std::bad_alloc.
    /// Windows: the host has started GDI+. Linux: ORLNativeBitmap.h reads the bitmap.
    virtual OSImageHandle LoadBitmapW(short inID, bool inLocalized) = 0;

    /// Loads a PNG file, with its rows exchanged, from the folder "PNG/" in the directory registered as "application".
    /// The second parameter is ignored. The result holds a null bitmap if it cannot be read or decoded. Throws
    /// std::bad_alloc.
    virtual OSImageHandle LoadBitmapFromFile(UTF16String inPath, bool) = 0;

    /// Loads a picture as LoadBitmapW does, with its rows in their order.
    virtual OSImageHandle LoadBitmapWTL(short inID, bool inLocalized) = 0;

    /// Loads a cursor in the language of the platform's own choice. Returns the native handle, which stays the
    /// collection's, or null. Linux: GetCursorPicture in ORLResources.h reads it.
    virtual void* LoadCursorW(short inID) const = 0;

    /// Loads a menu in the current language. Returns it, and the caller destroys it; null after an assertion if there
    /// is none, and null if it cannot be read.
    virtual HMENU LoadMenuW(short inID) const = 0;

protected:
    ResourceCollection() = default;
    ResourceCollection(const ResourceCollection&) = default;
    ResourceCollection& operator=(const ResourceCollection&) = default;
};

} // namespace ORL
