// Floor: System
// The shape of the mouse pointer.
#pragma once

#include <ORLConfig.h>

namespace ORL {

/// Sets the mouse pointer to one of four standard shapes, until the system or the host sets another one.
///
/// Failure:  never fails and never throws.
/// Threads:  on Windows, call it on the thread of the window.
/// On Linux: calls the host's function if there is one, otherwise sets the pointer of the host's X11 window, otherwise
///           does nothing; see ORL::Cursors::Linux.
class ORL_API Cursor
{
public:
    static void SetArrowCursor(); ///< the usual pointer
    static void SetIBeamCursor(); ///< the pointer over text
    static void SetWaitCursor();  ///< the pointer during a long operation
    static void SetSizeCursor();  ///< arrows in all four directions

    Cursor() = delete;
};

/// Connects the pointer functions to a Linux host. Only the Linux library exports these functions.
namespace Cursors {
namespace Linux {

enum Shape { kNone = 0, kArrow = 32512, kIBeam = 32513, kWait = 32514, kSize = 32646 }; ///< shapes of the pointer

/// A host function that sets the pointer's shape, for example on Wayland. Must not throw.
typedef void (*SetShapeFunction)(Shape inShape, void* inContext);

/// Installs the function that sets the shape; null removes it. Not thread-safe: the host calls it at start-up.
ORL_API void SetShapeSetter(SetShapeFunction inFunction, void* inContext);

/// Selects the Xlib Window whose pointer the library sets, and the Display* of its connection. A null inDisplay removes
/// both. The host must remove them before it closes the window or the connection. The library loads libX11 at first use
/// and keeps it loaded; if it is missing, setting the pointer has no effect. Not thread-safe. From then on, set the
/// pointer only on threads that may use the connection.
ORL_API void SetX11Window(void* inDisplay, unsigned long inWindow);

/// Returns the shape that was last requested, even if it could not be set; kNone before the first request.
/// Thread-safe.
ORL_API Shape GetLastShape();

} // namespace Linux
} // namespace Cursors
} // namespace ORL
