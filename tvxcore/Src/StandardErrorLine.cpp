#include <StandardErrorLine.h>

#include <CorePlatform/StandardError.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace tvxcore {
namespace debug {

void WriteStandardErrorLine(const char* inFormat, ...) noexcept
{
    char text[4096];
    std::va_list arguments;
    va_start(arguments, inFormat);
    const int wanted = std::vsnprintf(text, sizeof(text), inFormat, arguments);
    va_end(arguments);
    // The terminator's place serves for the end of line.
    const std::size_t count = std::min(static_cast<std::size_t>(std::max(wanted, 0)), sizeof(text) - 1);
    text[count] = '\n';
    Platform::WriteStandardError_Impl(text, count + 1);
}

} // namespace debug
} // namespace tvxcore
