#include <ORLResources.h>
#include <Platform/Modules.h>
#include <Resources/MenuTemplate.h>

namespace ORL {

namespace {

using Resources::ParsedMenu;
using Resources::ParsedMenuItem;

const ParsedMenu* MenuOf(HMENU inMenu) noexcept
{
    return reinterpret_cast<const ParsedMenu*>(inMenu);
}

HMENU HandleOf(const ParsedMenu* inMenu) noexcept
{
    return reinterpret_cast<HMENU>(const_cast<ParsedMenu*>(inMenu));
}

} // namespace

namespace Modules {
namespace Platform {

HMENU LoadMenuIndirect_Impl(const void* inTemplate, std::size_t inSize)
{
    Resources::Bytes bytes;
    bytes.mData = static_cast<const unsigned char*>(inTemplate);
    bytes.mSize = inSize;
    return HandleOf(Resources::ReadMenuTemplate(bytes).release());
}

} // namespace Platform
} // namespace Modules

namespace Resources {
namespace Linux {

int GetMenuItemCount(HMENU inMenu)
{
    return inMenu != nullptr ? static_cast<int>(MenuOf(inMenu)->mItems.size()) : 0;
}

bool GetMenuItem(HMENU inMenu, int inIndex, MenuItem& outItem)
{
    if (inIndex < 0 || inIndex >= GetMenuItemCount(inMenu)) {
        return false;
    }
    const ParsedMenuItem& item = MenuOf(inMenu)->mItems[static_cast<std::size_t>(inIndex)];
    outItem = MenuItem{item.mText, item.mFlags, item.mID, HandleOf(item.mSubMenu.get())};
    return true;
}

void DestroyMenu(HMENU inMenu)
{
    delete MenuOf(inMenu);
}

bool GetCursorPicture(const void* inCursor, CursorPicture& outPicture)
{
    if (inCursor == nullptr) {
        return false;
    }
    outPicture = *static_cast<const CursorPicture*>(inCursor);
    return true;
}

} // namespace Linux
} // namespace Resources
} // namespace ORL
