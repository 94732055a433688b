// Wraps the platform functions that the loader calls: each can be made to fail, and deletions are counted.
#pragma once

#include <atomic>

namespace ORLTest {

/// Thread-safe.
struct WrappedImages
{
    std::atomic<int> mFailCopies{0}; // number of calls that fail, beginning with the next
    std::atomic<int> mFailStreams{0};
    std::atomic<int> mFailObjects{0};
    std::atomic<int> mFailLocks{0};
    std::atomic<int> mSkipLocks{0}; // successful locks before the first that fails
    std::atomic<int> mLocks{0};     // number of locks so far
    std::atomic<int> mDeletions{0};
};

/// Returns the settings. Each test that uses the settings resets them first.
WrappedImages& Wrapped();

/// Sets all settings and counts to 0.
void ResetWrapped();

} // namespace ORLTest
