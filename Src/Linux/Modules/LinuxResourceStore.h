// Floor: System
// What is kept beside a module's handle: its resources by name, and the cursors that were asked for.
#pragma once

#include <ORLResources.h>
#include <Platform/Modules.h>
#include <Resources/ResourceIndex.h>

#include <map>
#include <memory>
#include <mutex>

namespace ORL {
namespace Modules {

class ResourceStore
{
public:
    ResourceStore() = default;
    ResourceStore(const ResourceStore&) = delete;
    ResourceStore& operator=(const ResourceStore&) = delete;

    Resources::ResourceIndex mIndex;

    /// Finds in the language of the user of this process.
    const Resources::ResourceEntry* Find(const unsigned short* inType, const unsigned short* inName,
                                         unsigned short inLanguage) const;

    /// The cursor of that identifier, read once; null if there is none. Throws std::bad_alloc.
    const Resources::Linux::CursorPicture* FindCursor(unsigned short inID) const;

    /// The bitmap resource of that number, made anew; null if there is none or it cannot be read. Throws std::bad_alloc.
    HBITMAP MakeBitmap(unsigned short inID) const;

private:
    std::unique_ptr<Resources::Linux::CursorPicture> ReadCursor(unsigned short inID) const;

    mutable std::mutex mCursorsLock; // a leaf lock
    mutable std::map<unsigned short, std::unique_ptr<Resources::Linux::CursorPicture>> mCursors;
};

} // namespace Modules
} // namespace ORL
