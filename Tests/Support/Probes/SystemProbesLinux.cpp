#include <SystemProbes.h>

#include <filesystem>
#include <iterator>

namespace ORLTest {

bool RunsOnEmulator()
{
    return false;
}

bool SystemAcceptsLongPlainPaths()
{
    return true;
}

unsigned OpenHandles()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<unsigned>(std::distance(all, std::filesystem::directory_iterator()));
}

} // namespace ORLTest
