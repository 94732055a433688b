// Wraps the platform functions that the loader calls: each can be made to fail, and deletions are counted.
#pragma once

namespace ORLTest {

struct WrappedImages
{
    int mFailCopies = 0; // number of calls that fail, beginning with the next
    int mFailStreams = 0;
    int mFailObjects = 0;
    int mFailLocks = 0;
    int mSkipLocks = 0; // successful locks before the first that fails
    int mLocks = 0;     // number of locks so far
    int mDeletions = 0;
};

/// Returns the settings. Each test that uses the settings resets them first.
WrappedImages& Wrapped();

} // namespace ORLTest
