// Helpers for the tests of executors.
#pragma once

#include <Signals.h>
#include <tvxcore/Executor.h>

#include <gtest/gtest.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>

namespace ORLTest {

using ExecutorPointer = boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>;
using Function = boost::function<void()>;

inline ExecutorPointer MakeExecutor(int inThreads)
{
    return tvxcore::threads::CreateAsyncThreadedExecutor("test", inThreads, 3, Function(), Function());
}

inline void Stop(tvxcore::threads::AsyncExecutor& ioExecutor)
{
    ioExecutor.RequestTermination();
    ioExecutor.WaitForTermination();
}

/// Returns when everything queued so far has run.
inline void Drain(tvxcore::threads::AsyncExecutor& ioExecutor)
{
    const std::size_t threads = ioExecutor.GetThreadCount();
    Barrier all(threads + 1);
    BlockingList<int> left;
    for (std::size_t i = 0; i < threads; ++i) {
        ASSERT_TRUE(ioExecutor.QueueFunction(
            [&] {
                all.Join();
                left.Add(0);
            },
            0));
    }
    all.Join();
    left.WaitFor(threads);
}

} // namespace ORLTest
