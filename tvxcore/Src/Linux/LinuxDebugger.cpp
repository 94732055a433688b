#include <tvxcore/Debug.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tvxcore {
namespace debug {

// A debugger is attached if TracerPid in the process's status is not 0. Uses plain reads: a failed check may occur
// anywhere, so this code does not allocate.
bool IsDebuggerAttached()
{
    const int file = ::open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    char text[4096];
    const ssize_t size = ::read(file, text, sizeof(text) - 1);
    ::close(file);
    if (size <= 0) {
        return false;
    }
    text[size] = '\0';
    const char* field = std::strstr(text, "TracerPid:");
    return field != nullptr && std::strtol(field + sizeof("TracerPid:") - 1, nullptr, 10) != 0;
}

} // namespace debug
} // namespace tvxcore
