#include <ProcessThreads.h>

#include <filesystem>
#include <iterator>

namespace ORLTest {

unsigned int CountProcessThreads()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<unsigned int>(std::distance(begin(tasks), end(tasks)));
}

} // namespace ORLTest
