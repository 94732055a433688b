// Sets the cursor on a virtual display and queries the X server for the displayed image.
#include <ORLCursor.h>

#include <FaultySystemCallsLinux.h>
#include <ProcessRunner.h>

#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Included last, because the macros of X11 collide with names of other headers.
#include <X11/Xlib.h>
#include <X11/cursorfont.h>
#include <X11/extensions/Xfixes.h>

namespace Cursors = ORL::Cursors;
using namespace ORLTest;

namespace {

using Shape = Cursors::Linux::Shape;

struct Row
{
    void (*mSet)();
    Shape mShape;
    unsigned int mFontShape;
};

const Row kRows[] = {
    {&ORL::Cursor::SetIBeamCursor, Cursors::Linux::kIBeam, XC_xterm},
    {&ORL::Cursor::SetWaitCursor, Cursors::Linux::kWait, XC_watch},
    {&ORL::Cursor::SetSizeCursor, Cursors::Linux::kSize, XC_fleur},
    {&ORL::Cursor::SetArrowCursor, Cursors::Linux::kArrow, XC_left_ptr},
};

// An X server without a real screen. The server writes its display number when it accepts connections.
class VirtualDisplay
{
public:
    VirtualDisplay()
    {
        int ends[2];
        if (::pipe(ends) != 0) {
            return;
        }
        mServer = ::fork();
        if (mServer == 0) {
            const std::string number = std::to_string(ends[1]);
            ::execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "320x240x24", "-nolisten", "tcp",
                     "-noreset", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        ::close(ends[1]);
        char digit = 0;
        while (::read(ends[0], &digit, 1) == 1 && digit != '\n') {
            mName += digit;
        }
        ::close(ends[0]);
    }
    ~VirtualDisplay()
    {
        if (mServer > 0) {
            ::kill(mServer, SIGTERM);
            ::waitpid(mServer, nullptr, 0);
        }
    }
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    bool IsThere() const { return !mName.empty(); }
    std::string Name() const { return ":" + mName; }

private:
    pid_t mServer = -1;
    std::string mName;
};

// Returns the cursor image that the X server currently displays.
std::vector<unsigned long> ShownPointer(Display* inDisplay)
{
    XSync(inDisplay, False);
    XFixesCursorImage* const image = XFixesGetCursorImage(inDisplay);
    if (image == nullptr) {
        return {};
    }
    std::vector<unsigned long> pixels(image->pixels, image->pixels + image->width * image->height);
    pixels.push_back(image->xhot);
    pixels.push_back(image->yhot);
    XFree(image);
    return pixels;
}

// Sets a cursor font shape for the window without the library, and returns its image.
std::vector<unsigned long> PointerOfFont(Display* inDisplay, Window inWindow, unsigned int inShape)
{
    const ::Cursor cursor = XCreateFontCursor(inDisplay, inShape);
    XDefineCursor(inDisplay, inWindow, cursor);
    XFreeCursor(inDisplay, cursor);
    return ShownPointer(inDisplay);
}

Window ShowWindowUnderPointer(Display* inDisplay)
{
    const Window window = XCreateSimpleWindow(inDisplay, DefaultRootWindow(inDisplay), 0, 0, 320, 240, 0, 0, 0);
    XSelectInput(inDisplay, window, StructureNotifyMask);
    XMapWindow(inDisplay, window);
    XEvent event;
    do {
        XNextEvent(inDisplay, &event);
    } while (event.type != MapNotify);
    XWarpPointer(inDisplay, None, window, 0, 0, 0, 0, 100, 100);
    XSync(inDisplay, False);
    return window;
}

} // namespace

TEST(Cursor, OnX11_TheServerShowsEachShape)
{
    const VirtualDisplay server;
    ASSERT_TRUE(server.IsThere()) << "Xvfb does not start";
    Display* const display = XOpenDisplay(server.Name().c_str());
    ASSERT_NE(nullptr, display);
    int ignored = 0;
    ASSERT_TRUE(XFixesQueryExtension(display, &ignored, &ignored));
    const Window window = ShowWindowUnderPointer(display);
    std::vector<std::vector<unsigned long>> expected;
    for (const Row& row : kRows) {
        expected.push_back(PointerOfFont(display, window, row.mFontShape));
        ASSERT_FALSE(expected.back().empty());
    }
    PointerOfFont(display, window, XC_pirate);
    Cursors::Linux::SetX11Window(display, window);
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        kRows[i].mSet();
        EXPECT_EQ(expected[i], ShownPointer(display)) << i;
        EXPECT_NE(expected[(i + 1) % std::size(kRows)], expected[i]);
        EXPECT_EQ(kRows[i].mShape, Cursors::Linux::GetLastShape());
    }
    Cursors::Linux::SetX11Window(nullptr, 0);
    ORL::Cursor::SetWaitCursor();
    EXPECT_EQ(expected.back(), ShownPointer(display)); // unchanged: the host no longer names its window
    XCloseDisplay(display);
}

TEST(Cursor, TheHostsFunction_ComesFirst)
{
    std::vector<Shape> shapes;
    Cursors::Linux::SetShapeSetter(
        [](Shape inShape, void* inShapes) { static_cast<std::vector<Shape>*>(inShapes)->push_back(inShape); }, &shapes);
    Cursors::Linux::SetX11Window(&shapes, 1); // not used: the host's function has precedence
    for (const Row& row : kRows) {
        row.mSet();
    }
    Cursors::Linux::SetShapeSetter(nullptr, nullptr);
    Cursors::Linux::SetX11Window(nullptr, 0);
    const std::vector<Shape> expected = {Cursors::Linux::kIBeam, Cursors::Linux::kWait, Cursors::Linux::kSize,
                                         Cursors::Linux::kArrow};
    EXPECT_EQ(expected, shapes);
}

TEST(Cursor, WithoutADisplay_OnlyTheShapeIsKept)
{
    for (const Row& row : kRows) {
        row.mSet();
        EXPECT_EQ(row.mShape, Cursors::Linux::GetLastShape());
    }
}

// Runs in a new process, because the library searches for libX11 only once.
TEST(CursorDeathTest, WithoutLibX11_NothingHappens)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(
        {
            FaultySystemCalls calls;
            calls.Fail(FaultySystemCalls::kLoadObject, 1, ENOENT);
            int noDisplay = 0;
            Cursors::Linux::SetX11Window(&noDisplay, 1);
            ORL::Cursor::SetWaitCursor();
            const bool isAsked = calls.Count(FaultySystemCalls::kLoadObject) == 1;
            ::_exit(isAsked && Cursors::Linux::GetLastShape() == Cursors::Linux::kWait ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
