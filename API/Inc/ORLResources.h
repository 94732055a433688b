// Floor: System
// Linux replacements for Windows functions on modules, menus and cursors. Only the Linux library exports these
// functions.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>
#include <tvxcore/String.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Resources {
namespace Linux {

/// Returns the module that contains a function or variable, or null. The handle is valid while that module is loaded. A
/// plug-in passes the address of one of its functions and wraps the result with Module::Create to load its own
/// resources. Thread-safe. Never throws.
ORL_API HINSTANCE ModuleOfAddress(const void* inAddress);

/// Bits of MenuItem::mFlags, with their Windows values.
inline constexpr unsigned int kMenuGrayed = 0x0001;
inline constexpr unsigned int kMenuDisabled = 0x0002;
inline constexpr unsigned int kMenuChecked = 0x0008;
inline constexpr unsigned int kMenuPopup = 0x0010;
inline constexpr unsigned int kMenuBarBreak = 0x0020;
inline constexpr unsigned int kMenuBreak = 0x0040;
inline constexpr unsigned int kMenuSeparator = 0x0800;

struct MenuItem ///< One item of a menu.
{
    UTF16String mText;   ///< "&" precedes the mnemonic letter, a tab precedes the shortcut key; empty for a separator
    unsigned int mFlags; ///< a combination of the bits above
    unsigned int mID;    ///< the command; 0 for a submenu in the older template format
    HMENU mSubMenu;      ///< owned by the menu; null if the item has no submenu
};

/// Returns the number of items; 0 for a null menu. Like GetMenuItem, thread-safe until DestroyMenu is called, because
/// menus are immutable.
ORL_API int GetMenuItemCount(HMENU inMenu);

/// Copies the item at an index, counted from 0. Returns false, with outItem unchanged, if there is no such item. Throws
/// std::bad_alloc.
ORL_API bool GetMenuItem(HMENU inMenu, int inIndex, MenuItem& outItem);

/// Destroys a menu that LoadMenuW returned, with its submenus. Must not be called for a submenu. Ignores null.
ORL_API void DestroyMenu(HMENU inMenu);

struct CursorPicture ///< A decoded cursor.
{
    int mWidth;    ///< in pixels
    int mHeight;   ///< in pixels
    int mHotSpotX; ///< distance from the left edge of the picture
    int mHotSpotY; ///< distance from the top edge of the picture
    std::vector<std::uint32_t>
        mPixels; ///< top row first; alpha in bits 24 to 31, then red, green, blue; not premultiplied
};

/// Reads a cursor that LoadCursorW returned. Returns false, with outPicture unchanged, for null. Thread-safe. Throws
/// std::bad_alloc.
ORL_API bool GetCursorPicture(const void* inCursor, CursorPicture& outPicture);

} // namespace Linux
} // namespace Resources
} // namespace ORL
