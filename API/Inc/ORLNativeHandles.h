// Floor: Platform
// Handle types of the home platform, for signatures that name them. On Windows they are the system's own types, so this
// header goes with <windows.h> in either order. On Linux they are opaque handles of this library.
#pragma once

struct HINSTANCE__;
struct HMENU__;
struct HBITMAP__;

/// An executable module. Linux: what dlopen returns for an ELF module; a module that is only data has a handle of this
/// library, which no function of the system takes. Null stands for the program itself.
typedef HINSTANCE__* HINSTANCE;

/// A menu. Linux: see ORL::Resources::Linux in ORLResources.h.
typedef HMENU__* HMENU;

/// A bitmap.
typedef HBITMAP__* HBITMAP;
