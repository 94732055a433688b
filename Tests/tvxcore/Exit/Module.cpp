#include "Module.h"

#include <tvxcore/Executor.h>

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <thread>
#include <utility>

namespace {

using namespace tvxcore::threads;

std::atomic<int> sRuns{0};

// Threads that always have something to do, locks that are always taken: an end at any moment finds some in use.
struct Work
{
    Work() : mExecutor(CreateAsyncThreadedExecutor("work", 3, 3, boost::function<void()>(), boost::function<void()>()))
    {
        AsyncThreadedExecutor* const executor = mExecutor.get();
        for (int i = 0; i < 20; ++i) {
            executor->QueueFunction([executor] { Again(*executor); }, 0);
        }
        mRepeat = std::make_unique<RepeatDelayFunction>(mExecutor, [] { ++sRuns; }, 1);
    }

    static void Again(AsyncThreadedExecutor& ioExecutor)
    {
        ++sRuns;
        ioExecutor.QueueFunction([&ioExecutor] { Again(ioExecutor); }, 0);
    }

    boost::shared_ptr<AsyncThreadedExecutor> mExecutor;
    std::unique_ptr<RepeatDelayFunction> mRepeat;
};

std::unique_ptr<Work> sWork;
std::atomic<Work*> sNobodys{nullptr}; // still found by a leak checker

} // namespace

void StartWork(bool inIsHeldByStatics)
{
    auto work = std::make_unique<Work>();
    if (inIsHeldByStatics) {
        sWork = std::move(work);
    } else {
        sNobodys = work.release();
    }
    while (sRuns < 100) {
        std::this_thread::yield();
    }
}
