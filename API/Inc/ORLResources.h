// Floor: System
// Modules, menus and cursors where the system has no such thing.
//
// These functions exist in the Linux library alone; a host that runs on both platforms calls them from its Linux
// sources.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>
#include <tvxcore/String.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Resources {
namespace Linux {

/// The module that holds a function or variable; null if the address belongs to none. A plug-in passes the address of
/// one of its own functions to reach its own resources through Module::Create. The handle stays valid while that module
/// is loaded. Thread-safe.
ORL_API HINSTANCE ModuleOfAddress(const void* inAddress);

/// What stands in a menu's flags; the home platform's bits.
inline constexpr unsigned int kMenuGrayed = 0x0001;
inline constexpr unsigned int kMenuDisabled = 0x0002;
inline constexpr unsigned int kMenuChecked = 0x0008;
inline constexpr unsigned int kMenuPopup = 0x0010;
inline constexpr unsigned int kMenuBarBreak = 0x0020;
inline constexpr unsigned int kMenuBreak = 0x0040;
inline constexpr unsigned int kMenuSeparator = 0x0800;

struct MenuItem
{
    UTF16String mText;   ///< "&" marks the letter of the shortcut; behind a tab stands the key; empty for a separator
    unsigned int mFlags; ///< bits as above
    unsigned int mID;    ///< the command; 0 for a submenu of the older template form
    HMENU mSubMenu;      ///< belongs to the menu; null for a plain item
};

/// The number of items; 0 for a null menu. Menus never change, so all functions are thread-safe until DestroyMenu.
ORL_API int GetMenuItemCount(HMENU inMenu);

/// Copies an item, counted from 0. Returns false, with outItem untouched, if there is none. Throws std::bad_alloc.
ORL_API bool GetMenuItem(HMENU inMenu, int inIndex, MenuItem& outItem);

/// Destroys a menu that LoadMenuW returned, with its submenus. A submenu is not destroyed by itself. Null is ignored.
ORL_API void DestroyMenu(HMENU inMenu);

struct CursorPicture
{
    int mWidth;
    int mHeight;
    int mHotSpotX; ///< from the left
    int mHotSpotY; ///< from the top
    std::vector<std::uint32_t>
        mPixels; ///< rows from the top, alpha in bits 24 to 31, then red, green, blue; not premultiplied
};

/// Reads a cursor that LoadCursorW returned. Returns false, with outPicture untouched, for null. Thread-safe. Throws
/// std::bad_alloc.
ORL_API bool GetCursorPicture(const void* inCursor, CursorPicture& outPicture);

} // namespace Linux
} // namespace Resources
} // namespace ORL
