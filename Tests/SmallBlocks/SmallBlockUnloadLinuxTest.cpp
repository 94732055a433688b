#include <SmallBlocks/Sanitizer.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <mutex>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using tvxcore::utility::SmallBlockAllocator;

namespace {

/// The plug-in, which loads the shared library.
class Guest
{
public:
    Guest() : mHandle(::dlopen(TVXCORE_TEST_GUEST, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(mHandle, nullptr) << ::dlerror();
    }
    ~Guest() { ::dlclose(mHandle); }

    bool Call(const char* inFunction) const { return reinterpret_cast<bool (*)()>(::dlsym(mHandle, inFunction))(); }

    void* Keep() const { return reinterpret_cast<void* (*)()>(::dlsym(mHandle, "GuestKeep"))(); }

private:
    void* mHandle;
};

bool IsMapped(const char* inName)
{
    std::FILE* const file = std::fopen("/proc/self/maps", "r");
    char line[4096];
    bool found = false;
    while (std::fgets(line, sizeof(line), file) != nullptr) {
        found = found || std::strstr(line, inName) != nullptr;
    }
    std::fclose(file);
    return found;
}

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
// Not steady, because the sanitizers keep shadow memory for each library that was loaded.
constexpr bool kIsOthersMemorySteady = false;
#else
constexpr bool kIsOthersMemorySteady = true;
#endif

std::size_t MappedPages()
{
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    unsigned long pages = 0;
    EXPECT_EQ(std::fscanf(file, "%lu", &pages), 1);
    std::fclose(file);
    return pages;
}

// A thread of the host that outlives every plug-in.
class Worker
{
public:
    ~Worker()
    {
        Run(nullptr);
        mThread.join();
    }

    void Run(std::function<void()> inJob)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mIsEnding = !inJob;
        mJob = std::move(inJob);
        mHasJob = true;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return !mHasJob; });
    }

private:
    void Work()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        for (;;) {
            mChanged.wait(lock, [this] { return mHasJob; });
            if (!mIsEnding) {
                mJob();
            }
            mHasJob = false;
            mChanged.notify_all();
            if (mIsEnding) {
                return;
            }
        }
    }

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::function<void()> mJob;
    bool mHasJob = false;
    bool mIsEnding = false;
    std::thread mThread{[this] { Work(); }};
};

} // namespace

TEST(SmallBlockUnload, LoadedAndUnloadedAHundredTimes_MemoryDoesNotGrow)
{
    Worker worker;
    std::size_t early = 0;
    for (int round = 0; round < 120; ++round) {
        {
            const Guest guest;
            EXPECT_TRUE(guest.Call("GuestUse"));
            EXPECT_TRUE(guest.Call("GuestUseOnThread"));
            worker.Run([&] { EXPECT_TRUE(guest.Call("GuestUse")); });
        }
        ASSERT_FALSE(IsMapped("libtvxcore.so"));
        if (round == 19) {
            early = MappedPages();
        }
    }
    if (kIsOthersMemorySteady) {
        EXPECT_LE(MappedPages(), early);
    }
}

TEST(SmallBlockUnload, ThreadsThatUsedTheLibraryEndAfterItIsGone_NothingOfItIsCalled)
{
    for (int round = 0; round < 20; ++round) {
        Worker worker;
        const Guest guest;
        worker.Run([&] { EXPECT_TRUE(guest.Call("GuestUse")); });
    }
}

TEST(SmallBlockUnload, BlockIsOutstandingAtTheUnloading_ItStaysReadable)
{
    void* kept = nullptr;
    {
        const Guest guest;
        kept = guest.Keep();
        ASSERT_NE(kept, nullptr);
        std::memset(kept, 0x77, 100);
    }
    EXPECT_EQ(static_cast<unsigned char*>(kept)[99], 0x77);
    if (tvxcore::utility::SmallBlocks::kBlocksAreTheSystems) {
        std::free(kept);
    }
}

TEST(SmallBlockUnload, ProcessForksWhileThreadsAllocate_TheChildIsServed)
{
    // The address sanitizer's allocator does not support a fork while other threads use it.
    const int threadCount = tvxcore::utility::SmallBlocks::kBlocksAreTheSystems ? 0 : 2;
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            std::vector<void*> blocks(2000);
            while (!isOver.load()) {
                for (void*& block : blocks) {
                    block = SmallBlockAllocator::Allocate(64);
                }
                for (void* const block : blocks) {
                    SmallBlockAllocator::Dispose(block, 64);
                }
            }
        });
    }
    for (int round = 0; round < 30; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(20);
            bool isServed = true;
            for (std::size_t i = 0; i < 5000; ++i) {
                void* const block = SmallBlockAllocator::Allocate(i);
                isServed = isServed && block != nullptr;
                if (i % 2 == 0) {
                    SmallBlockAllocator::Dispose(block, i);
                }
            }
            ::_exit(isServed ? 0 : 1);
        }
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    }
    isOver.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

namespace {

// Acquires each of the allocator's locks and does little else.
void ReadCounters()
{
    SmallBlockAllocator::Metrics::Snapshot snapshot;
    SmallBlockAllocator::Metrics::GetSnapshot(snapshot);
}

void MoveManyBlocks()
{
    void* blocks[400];
    for (void*& block : blocks) {
        block = SmallBlockAllocator::Allocate(4096);
    }
    for (void* const block : blocks) {
        SmallBlockAllocator::Dispose(block, 4096);
    }
}

void ComeAndGo()
{
    std::thread([] { SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(64), 64); }).join();
}

} // namespace

// If another thread holds a lock at the fork, the lock would stay locked in the child forever; the fork must wait for
// it.
TEST(SmallBlockUnload, ProcessForksWhileALockIsBusy_TheChildCanTakeIt)
{
    if (tvxcore::utility::SmallBlocks::kBlocksAreTheSystems) {
        GTEST_SKIP() << "blocks are the system's";
    }
    for (void (*const keepBusy)() : {&ReadCounters, &MoveManyBlocks, &ComeAndGo}) {
        std::atomic<bool> isOver{false};
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&isOver, keepBusy] {
                while (!isOver.load()) {
                    keepBusy();
                }
            });
        }
        for (int round = 0; round < 50; ++round) {
            const pid_t child = ::fork();
            if (child == 0) {
                ::alarm(20);
                ReadCounters();
                MoveManyBlocks();
#if !defined(__SANITIZE_THREAD__) // the Thread sanitizer refuses new threads in the child of a process with threads
                ComeAndGo();
#endif
                ::_exit(0);
            }
            int status = -1;
            EXPECT_EQ(::waitpid(child, &status, 0), child);
            if (status != 0) {
                ADD_FAILURE() << "status " << status;
                break;
            }
        }
        isOver.store(true);
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}
