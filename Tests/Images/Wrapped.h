// What the tests make of the platform under the loader: each of its operations can fail, and deletions are counted.
#pragma once

namespace ORLTest {

struct WrappedImages
{
    int mFailCopies = 0; // the next ones
    int mFailStreams = 0;
    int mFailObjects = 0;
    int mFailLocks = 0;
    int mSkipLocks = 0; // before the first that fails
    int mLocks = 0;     // so far
    int mDeletions = 0;
};

/// Reset at the start of each test that uses it.
WrappedImages& Wrapped();

} // namespace ORLTest
