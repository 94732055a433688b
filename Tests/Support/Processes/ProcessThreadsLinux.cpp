#include <ProcessThreads.h>

#include <filesystem>
#include <iterator>
#include <thread>

namespace ORLTest {

// Starts a thread first, because a sanitizer starts its own permanent thread with the first thread of a process.
unsigned int CountProcessThreads()
{
    static const bool isFirstThreadOver = (std::thread([] {}).join(), true);
    static_cast<void>(isFirstThreadOver);
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<unsigned int>(std::distance(begin(tasks), end(tasks)));
}

} // namespace ORLTest
