// Floor: System
// The shape of the mouse pointer.
#pragma once

#include <ORLConfig.h>

namespace ORL {

/// Sets the pointer to one of four standard shapes, until the system or the host sets another one. Never fails.
///
/// Windows: belongs to the thread of the window. Linux: calls the function of the host, else sets the pointer of the
/// host's X11 window, else does nothing; see ORL::Cursors::Linux.
class ORL_API Cursor
{
public:
    static void SetArrowCursor();
    static void SetIBeamCursor();
    static void SetWaitCursor();
    static void SetSizeCursor(); ///< arrows in all four directions

    Cursor() = delete;
};

/// Where the pointer of a Linux host is. These functions exist in the Linux library alone.
namespace Cursors {
namespace Linux {

enum Shape { kNone = 0, kArrow = 32512, kIBeam = 32513, kWait = 32514, kSize = 32646 };

/// Sets a pointer's shape as the host can, on Wayland for instance. Must not throw.
typedef void (*SetShapeFunction)(Shape inShape, void* inContext);

/// Installs the function that sets the shape; null removes it. Belongs to the host's start; not thread-safe.
ORL_API void SetShapeSetter(SetShapeFunction inFunction, void* inContext);

/// Selects the window whose pointer is set, and its connection: a Display* of Xlib and a Window. Null removes both; the
/// host removes them before it closes either. Not thread-safe, and the pointer must then be set on threads that may use
/// the connection. libX11 is loaded at first use and stays loaded; if it is missing, nothing happens.
ORL_API void SetX11Window(void* inDisplay, unsigned long inWindow);

/// The shape that was set last, whether or not there was anything to set it on; kNone before the first. Thread-safe.
ORL_API Shape GetLastShape();

} // namespace Linux
} // namespace Cursors
} // namespace ORL
