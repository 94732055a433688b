#include <Platform/ProcessClock.h>

#include "../Calls/SystemCalls.h"
#include "LinuxProcFile.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

namespace ORL {
namespace ProcessClock {
namespace Platform {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

// Returns the time since boot, the same clock as the start times of processes in /proc. This clock includes suspended
// time and ignores changes to the date.
std::int64_t NanosecondsSinceBoot() noexcept
{
    timespec now{};
    if (Linux::System().mClockGetTime(CLOCK_BOOTTIME, &now) != 0) {
        return 0;
    }
    return static_cast<std::int64_t>(now.tv_sec) * kNanosecondsPerSecond + now.tv_nsec;
}

// Returns field 22 of /proc/self/stat, in nanoseconds. The name in field 2 may contain blanks and parentheses, so the
// fields are counted after the last ")". Returns a negative number if the file cannot be read or parsed.
std::int64_t StartOfProcess() noexcept
{
    char buffer[1024];
    std::size_t size = 0;
    if (Linux::ReadProcFile("/proc/self/stat", buffer, sizeof(buffer), size) != 0) {
        return -1;
    }
    std::string_view text(buffer, size);
    const std::size_t name = text.rfind(')');
    if (name == std::string_view::npos) {
        return -1;
    }
    text.remove_prefix(name + 1);
    for (int blanks = 0; blanks < 20; ++blanks) { // skips to the blank before field 22
        const std::size_t blank = text.find(' ');
        if (blank == std::string_view::npos) {
            return -1;
        }
        text.remove_prefix(blank + 1);
    }
    std::uint64_t ticks = 0;
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    if (ticksPerSecond <= 0 || !Linux::TakeNumber(text, ticks)) {
        return -1;
    }
    return static_cast<std::int64_t>(ticks) * (kNanosecondsPerSecond / ticksPerSecond);
}

// If the start time is unknown or in the future (in a restored container), the clock starts at its first reading.
std::int64_t FindStart() noexcept
{
    const std::int64_t now = NanosecondsSinceBoot();
    const std::int64_t start = StartOfProcess();
    return start >= 0 && start <= now ? start : now;
}

} // namespace

std::int64_t GetMilliseconds_Impl() noexcept
{
    static const std::int64_t sStart = FindStart();
    return std::max<std::int64_t>(NanosecondsSinceBoot() - sStart, 0) / 1'000'000;
}

} // namespace Platform
} // namespace ProcessClock
} // namespace ORL
