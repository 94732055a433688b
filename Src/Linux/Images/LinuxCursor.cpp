#include <ORLCursor.h>

#include "../Calls/SystemCalls.h"

#include <Platform/Cursors.h>

#include <atomic>
#include <dlfcn.h>

namespace ORL {
namespace Cursors {

namespace {

using Linux::Shape;

std::atomic<Shape> sLastShape{Linux::kNone};

struct HostFunction
{
    Linux::SetShapeFunction mFunction;
    void* mContext;
};

struct X11Window
{
    void* mDisplay;
    unsigned long mWindow;
};

HostFunction sHostFunction{nullptr, nullptr};
X11Window sWindow{nullptr, 0};

// The functions of libX11 that set a pointer shape. Hosts without a display never load the library.
struct Xlib
{
    unsigned long (*mCreateFontCursor)(void* inDisplay, unsigned int inShape);
    int (*mDefineCursor)(void* inDisplay, unsigned long inWindow, unsigned long inCursor);
    int (*mFreeCursor)(void* inDisplay, unsigned long inCursor);
    int (*mFlush)(void* inDisplay);

    bool IsComplete() const noexcept
    {
        return mCreateFontCursor != nullptr && mDefineCursor != nullptr && mFreeCursor != nullptr && mFlush != nullptr;
    }
};

template <class Function>
void Find(void* inLibrary, const char* inName, Function*& outFunction)
{
    outFunction = reinterpret_cast<Function*>(::dlsym(inLibrary, inName));
}

// libX11 stays loaded, since the host also uses it.
Xlib LoadXlib()
{
    Xlib functions{};
    if (void* const library = ORL::Linux::System().mLoadObject("libX11.so.6", RTLD_NOW | RTLD_LOCAL)) {
        Find(library, "XCreateFontCursor", functions.mCreateFontCursor);
        Find(library, "XDefineCursor", functions.mDefineCursor);
        Find(library, "XFreeCursor", functions.mFreeCursor);
        Find(library, "XFlush", functions.mFlush);
    }
    return functions;
}

// Returns the shape's number in the X cursor font.
unsigned int FontShapeOf(Shape inShape) noexcept
{
    switch (inShape) {
    case Linux::kIBeam: return 152; // xterm
    case Linux::kWait: return 150;  // watch
    case Linux::kSize: return 52;   // fleur
    default: return 68;             // left_ptr
    }
}

// The window keeps the shape after the cursor has been freed.
void SetOnWindow(Shape inShape)
{
    static const Xlib sXlib = LoadXlib();
    if (!sXlib.IsComplete()) {
        return;
    }
    const unsigned long cursor = sXlib.mCreateFontCursor(sWindow.mDisplay, FontShapeOf(inShape));
    sXlib.mDefineCursor(sWindow.mDisplay, sWindow.mWindow, cursor);
    sXlib.mFreeCursor(sWindow.mDisplay, cursor);
    sXlib.mFlush(sWindow.mDisplay);
}

} // namespace

namespace Platform {

void SetCursor_Impl(unsigned short inShape)
{
    const auto shape = static_cast<Shape>(inShape);
    sLastShape.store(shape, std::memory_order_relaxed);
    if (sHostFunction.mFunction != nullptr) {
        sHostFunction.mFunction(shape, sHostFunction.mContext);
    } else if (sWindow.mDisplay != nullptr) {
        SetOnWindow(shape);
    }
}

} // namespace Platform

namespace Linux {

void SetShapeSetter(SetShapeFunction inFunction, void* inContext)
{
    sHostFunction = {inFunction, inContext};
}

void SetX11Window(void* inDisplay, unsigned long inWindow)
{
    sWindow = {inDisplay, inWindow};
}

Shape GetLastShape()
{
    return sLastShape.load(std::memory_order_relaxed);
}

} // namespace Linux
} // namespace Cursors
} // namespace ORL
