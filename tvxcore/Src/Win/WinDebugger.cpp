#include <tvxcore/Debug.h>

#include <windows.h>

namespace tvxcore {
namespace debug {

bool IsDebuggerAttached()
{
    return ::IsDebuggerPresent() != FALSE;
}

} // namespace debug
} // namespace tvxcore
