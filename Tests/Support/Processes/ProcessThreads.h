// Counts the threads of this process, as the OS reports them.
#pragma once

#include <thread>

namespace ORLTest {

unsigned int CountProcessThreads();

/// Returns when the process has at most inAtMost threads. The OS may still list a joined thread for a moment, so a
/// count taken at the start of a test may be too high, but never too low.
inline void WaitForProcessThreads(unsigned int inAtMost)
{
    while (CountProcessThreads() > inAtMost) {
        std::this_thread::yield();
    }
}

} // namespace ORLTest
