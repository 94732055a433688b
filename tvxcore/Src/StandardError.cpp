#include <StandardError.h>

#include <CoreMutex.h>
#include <CorePlatform/StandardError.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace tvxcore {
namespace debug {

namespace {

threads::CoreMutex sMutex;   // over one whole text
bool sReaderIsStuck = false; // guarded by sMutex: patience is spent once, not for each text

// False when the rest is dropped.
bool WriteAll(const char* inBytes, std::size_t inCount) noexcept
{
    while (inCount != 0) {
        const std::size_t written = Platform::WriteStandardError_Impl(inBytes, inCount, sReaderIsStuck);
        if (written == 0) {
            return false;
        }
        inBytes += written;
        inCount -= written;
    }
    return true;
}

} // namespace

void WriteStandardError(const char* inBytes, std::size_t inCount, const char* inEnd) noexcept
{
    const Platform::SystemErrorKeeper keeper;
    const std::lock_guard<threads::CoreMutex> lock(sMutex);
    if (WriteAll(inBytes, inCount)) {
        WriteAll(inEnd, std::strlen(inEnd));
    }
}

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
    WriteStandardError(text, count + 1);
}

} // namespace debug
} // namespace tvxcore
