// Floor: Platform
// Windows handle types, for signatures that use them. On Windows the handles are the system's own types, so this header
// may be included before or after <windows.h>. On Linux the types are opaque handles of this library.
#pragma once

struct HINSTANCE__;
struct HMENU__;
struct HBITMAP__;

/// An executable module; null denotes the program itself. On Linux, the handle that dlopen returns for an ELF module. A
/// module loaded as data has a handle from this library, which no system function accepts.
typedef HINSTANCE__* HINSTANCE;

/// A menu. On Linux see ORL::Resources::Linux in ORLResources.h.
typedef HMENU__* HMENU;

/// A bitmap. On Linux see ORL::Images::Linux in ORLNativeBitmap.h.
typedef HBITMAP__* HBITMAP;
