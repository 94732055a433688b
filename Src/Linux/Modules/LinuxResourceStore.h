// Floor: System
// The data kept for a module besides its handle: an index of its resources, and the loaded cursors.
#pragma once

#include <ORLResources.h>
#include <Platform/Modules.h>
#include <Resources/ResourceIndex.h>

#include <Platform/Mutex.h>
#include <map>
#include <memory>

namespace ORL {
namespace Modules {

class ResourceStore
{
public:
    ResourceStore() = default;
    ResourceStore(const ResourceStore&) = delete;
    ResourceStore& operator=(const ResourceStore&) = delete;

    Resources::ResourceIndex mIndex;

    /// Finds a resource in a language; inLanguage 0 selects the user's language. Returns null if there is none.
    const Resources::ResourceEntry* Find(const unsigned short* inType, const unsigned short* inName,
                                         unsigned short inLanguage) const;

    /// Returns the cursor with this identifier, decoded on first use; null if there is none. Throws std::bad_alloc.
    const Resources::Linux::CursorPicture* FindCursor(unsigned short inID) const;

    /// Returns a new bitmap of a bitmap resource; null if the resource is missing or unreadable. Throws std::bad_alloc.
    HBITMAP MakeBitmap(unsigned short inID) const;

private:
    std::unique_ptr<Resources::Linux::CursorPicture> ReadCursor(unsigned short inID) const;

    mutable Mutex mCursorsLock; // a leaf lock
    mutable std::map<unsigned short, std::unique_ptr<Resources::Linux::CursorPicture>>
        mCursors TVXCORE_GUARDED_BY(mCursorsLock);
};

} // namespace Modules
} // namespace ORL
