#include <ProcessThreads.h>

#include <filesystem>
#include <iterator>
#include <thread>

namespace ORLTest {

// First starts and joins a thread, because a sanitizer starts a permanent thread of its own along with the first one.
unsigned int CountProcessThreads()
{
    static const bool isFirstThreadOver = (std::thread([] {}).join(), true);
    static_cast<void>(isFirstThreadOver);
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<unsigned int>(std::distance(begin(tasks), end(tasks)));
}

} // namespace ORLTest
