#include "Module.h"

#include <tvxcore/Executor.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <algorithm>
#include <atomic>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace tvxcore::threads;

std::atomic<int> sRuns{0};

// Keeps threads busy and locks held, so that the process exits while some are in use.
struct Work
{
    Work() : mExecutor(CreateAsyncThreadedExecutor("work", 3, 3, boost::function<void()>(), boost::function<void()>()))
    {
        AsyncThreadedExecutor* const executor = mExecutor.get();
        for (int i = 0; i < 20; ++i) {
            executor->QueueFunction([executor] { Again(*executor); }, 0);
        }
        mRepeat = std::make_unique<RepeatDelayFunction>(
            mExecutor, [] { ++sRuns; }, 1);
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
std::atomic<Work*> sLeakedWork{nullptr}; // keeps the object reachable for leak checkers

using tvxcore::utility::SmallBlockAllocator;

constexpr std::size_t kBlocks = 2000;

// Returns sizes from the smallest to some that exceed the allocator's classes.
std::size_t SizeOf(std::size_t inIndex)
{
    return 1 + inIndex * 7919 % 20000;
}

// Returns only sizes of the allocator's classes. Larger blocks come from the C library. When the process exits, the C
// library waits for the lock of the system's heap. If Windows has terminated a thread that held this lock, the exit
// blocks before any code of ours runs.
std::size_t SmallSizeOf(std::size_t inIndex)
{
    return 1 + inIndex * 7919 % 16384;
}

void AllocateForEver()
{
    std::vector<void*> blocks(kBlocks);
    for (;;) {
        for (std::size_t i = 0; i < kBlocks; ++i) {
            blocks[i] = SmallBlockAllocator::Allocate(SmallSizeOf(i));
        }
        for (std::size_t i = 0; i < kBlocks; ++i) {
            SmallBlockAllocator::Dispose(blocks[i], SmallSizeOf(i));
        }
        ++sRuns;
    }
}

bool IsFilledWith(const unsigned char* inBlock, std::size_t inSize, unsigned char inPattern)
{
    return std::all_of(inBlock, inBlock + inSize, [inPattern](unsigned char byte) { return byte == inPattern; });
}

struct LastUser
{
    ~LastUser()
    {
        if (mIsOfUse && !(AllocatesAndDisposes() && AllocatesAndDisposes())) {
            std::_Exit(99);
        }
    }

    static bool AllocatesAndDisposes()
    {
        static unsigned char* blocks[kBlocks];
        for (std::size_t i = 0; i < kBlocks; ++i) {
            blocks[i] = static_cast<unsigned char*>(SmallBlockAllocator::Allocate(SizeOf(i)));
            if (blocks[i] == nullptr) {
                return false;
            }
            std::memset(blocks[i], static_cast<unsigned char>(i), SizeOf(i));
        }
        bool isRight = true;
        for (std::size_t i = 0; i < kBlocks; ++i) {
            isRight = isRight && IsFilledWith(blocks[i], SizeOf(i), static_cast<unsigned char>(i));
            SmallBlockAllocator::Dispose(blocks[i], SizeOf(i));
        }
        return isRight;
    }

    bool mIsOfUse = false;
};

LastUser sLastUser;

} // namespace

void StartWork(bool inIsHeldByStatics)
{
    auto work = std::make_unique<Work>();
    if (inIsHeldByStatics) {
        sWork = std::move(work);
    } else {
        sLeakedWork = work.release();
    }
    while (sRuns < 100) {
        std::this_thread::yield();
    }
}

void StartAllocating()
{
    sLastUser.mIsOfUse = true;
    for (int i = 0; i < 3; ++i) {
        std::thread(&AllocateForEver).detach();
    }
    while (sRuns < 3) {
        std::this_thread::yield();
    }
}
