#include <ORLCursor.h>

#include <Platform/Cursors.h>

namespace ORL {

namespace {

constexpr unsigned short kArrow = 32512;
constexpr unsigned short kIBeam = 32513;
constexpr unsigned short kWait = 32514;
constexpr unsigned short kSizeAll = 32646;

} // namespace

void Cursor::SetArrowCursor()
{
    Cursors::Platform::SetCursor_Impl(kArrow);
}

void Cursor::SetIBeamCursor()
{
    Cursors::Platform::SetCursor_Impl(kIBeam);
}

void Cursor::SetWaitCursor()
{
    Cursors::Platform::SetCursor_Impl(kWait);
}

void Cursor::SetSizeCursor()
{
    Cursors::Platform::SetCursor_Impl(kSizeAll);
}

} // namespace ORL
