// The threads of this process, as the system counts them.
#pragma once

#include <thread>

namespace ORLTest {

unsigned int CountProcessThreads();

/// Returns when the process has no more threads than so many. A thread that has been joined may still be listed for a
/// moment, so the count that a test begins with may be too high, but never too low.
inline void WaitForProcessThreads(unsigned int inAtMost)
{
    while (CountProcessThreads() > inAtMost) {
        std::this_thread::yield();
    }
}

} // namespace ORLTest
