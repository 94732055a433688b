#include <Platform/Cursors.h>

#include <windows.h>

namespace ORL {
namespace Cursors {
namespace Platform {

void SetCursor_Impl(unsigned short inShape)
{
    ::SetCursor(::LoadCursorW(nullptr, MAKEINTRESOURCEW(inShape)));
}

} // namespace Platform
} // namespace Cursors
} // namespace ORL
