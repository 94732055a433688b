#include <Reports/StandardError.h>

#include <CorePlatform/StandardError.h>
#include <Executors/CoreMutex.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace tvxcore {
namespace debug {

namespace {

threads::CoreMutex sMutex;                              // held while one whole message is written
bool sReaderIsStuck TVXCORE_GUARDED_BY(sMutex) = false; // set so that only the first message waits for a stuck reader

// Returns false if the rest was dropped.
bool WriteAll(const char* inBytes, std::size_t inCount) noexcept TVXCORE_REQUIRES(sMutex)
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
    const threads::CoreMutexLock lock(sMutex);
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
    // The line end replaces the terminator.
    const std::size_t count = std::min(static_cast<std::size_t>(std::max(wanted, 0)), sizeof(text) - 1);
    text[count] = '\n';
    WriteStandardError(text, count + 1);
}

} // namespace debug
} // namespace tvxcore
