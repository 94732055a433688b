#include <SmallBlocks/Sanitizer.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/String.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <thread>
#include <utility>
#include <vector>

using namespace tvxcore::utility;
using Snapshot = SmallBlockAllocator::Metrics::Snapshot;

namespace {

Snapshot Now()
{
    Snapshot snapshot;
    EXPECT_TRUE(SmallBlockAllocator::Metrics::GetSnapshot(snapshot));
    return snapshot;
}

// A block that stores its size and a check word at both ends.
struct CheckedBlock
{
    unsigned char* mBytes;
    std::size_t mSize;

    explicit CheckedBlock(std::size_t inSize)
        : mBytes(static_cast<unsigned char*>(SmallBlockAllocator::Allocate(inSize))), mSize(inSize)
    {
        mBytes[0] = static_cast<unsigned char>(mSize);
        mBytes[mSize - 1] = static_cast<unsigned char>(mSize);
    }

    bool Dispose()
    {
        const unsigned char mark = static_cast<unsigned char>(mSize);
        const bool isWhole = mBytes[0] == mark && mBytes[mSize - 1] == mark;
        SmallBlockAllocator::Dispose(mBytes, mSize);
        return isWhole;
    }
};

// A shared stack through which threads exchange blocks.
class BlockExchange
{
public:
    void Put(CheckedBlock inBlock)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mBlocks.push_back(inBlock);
    }

    bool Take(CheckedBlock& outBlock)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mBlocks.empty()) {
            return false;
        }
        outBlock = mBlocks.back();
        mBlocks.pop_back();
        return true;
    }

private:
    std::mutex mMutex;
    std::vector<CheckedBlock> mBlocks;
};

// Allocates blocks of random sizes, frees some of them and some received from other threads, and passes some on.
int ExchangeBlocks(BlockExchange& ioExchange, unsigned inSeed, int inSteps)
{
    std::mt19937 random(inSeed);
    std::vector<CheckedBlock> own;
    int broken = 0;
    for (int i = 0; i < inSteps; ++i) {
        const std::size_t size = random() % 8 == 0 ? 1 + random() % 40000 : 1 + random() % 300;
        own.emplace_back(size);
        CheckedBlock other = own.back();
        switch (random() % 4) {
        case 0:
            ioExchange.Put(own.back());
            own.pop_back();
            break;
        case 1: broken += ioExchange.Take(other) && !other.Dispose(); break;
        case 2:
            std::swap(own[random() % own.size()], own.back());
            broken += !own.back().Dispose();
            own.pop_back();
            break;
        default: break;
        }
    }
    for (CheckedBlock& checked : own) {
        broken += !checked.Dispose();
    }
    return broken;
}

} // namespace

TEST(SmallBlockThreads, ManyThreadsTradeBlocks_NothingBreaksAndNothingIsLost)
{
    const Snapshot before = Now();
    BlockExchange exchange;
    std::atomic<int> broken{0};
    for (unsigned generation = 0; generation < 4; ++generation) {
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < 8; ++i) {
            threads.emplace_back([&, seed = generation * 100 + i] { broken += ExchangeBlocks(exchange, seed, 6000); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    CheckedBlock left(1);
    left.Dispose();
    while (exchange.Take(left)) {
        broken += !left.Dispose();
    }
    EXPECT_EQ(broken.load(), 0);
    const Snapshot after = Now();
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
    EXPECT_EQ(after.mSmallBlockBytesCurrent, before.mSmallBlockBytesCurrent);
}

TEST(SmallBlockThreads, ThreadsComeAndGo_LaterOnesUseWhatEarlierOnesLeft)
{
    // Eight blocks of each class, which fit into the stores.
    const auto useMuch = [] {
        std::vector<std::pair<void*, std::size_t>> blocks;
        for (std::size_t i = 0; i < 8 * SmallBlocks::kClassCount; ++i) {
            const std::size_t size = SmallBlocks::kClassSizes[i / 8];
            blocks.emplace_back(SmallBlockAllocator::Allocate(size), size);
        }
        for (const auto& block : blocks) {
            SmallBlockAllocator::Dispose(block.first, block.second);
        }
    };
    std::thread(useMuch).join();
    const Snapshot before = Now();
    for (int i = 0; i < 200; ++i) {
        std::thread(useMuch).join();
    }
    const Snapshot after = Now();
    EXPECT_EQ(after.mSystemAllocationBytesCurrent, before.mSystemAllocationBytesCurrent);
    EXPECT_EQ(after.mMasterBlockCountCurrent, before.mMasterBlockCountCurrent);
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
}

namespace {

std::atomic<int> sServedAtThreadEnd{0};

// Allocates and frees a block when thread-local objects are destroyed, before or after the allocator's own thread-exit
// handler.
struct LateUser
{
    UTF16String mText = UTF16String(100, static_cast<unsigned short>('a'));

    ~LateUser()
    {
        UTF16String other(2000, static_cast<unsigned short>('b'));
        mText += other;
        sServedAtThreadEnd += mText.size() == 2100;
    }
};

} // namespace

TEST(SmallBlockThreads, ThreadLocalDestructors_AreServed)
{
    const Snapshot before = Now();
    sServedAtThreadEnd = 0;
    for (int i = 0; i < 10; ++i) {
        std::thread([] {
            thread_local LateUser user;
            user.mText[0] = 'c';
        }).join();
    }
    EXPECT_EQ(sServedAtThreadEnd.load(), 10);
    EXPECT_EQ(Now().mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
}

namespace {

// Constructed before main in an unspecified order, and destroyed after main.
struct EarlyUser
{
    UTF16String mText = UTF16String(500, static_cast<unsigned short>('e'));
    void* mBlock = SmallBlockAllocator::Allocate(4096);

    ~EarlyUser() { SmallBlockAllocator::Dispose(mBlock, 4096); }
};

__attribute__((init_priority(102))) EarlyUser sVeryEarly;
EarlyUser sEarly;

} // namespace

TEST(SmallBlockThreads, StaticObjects_AreServedBeforeMain)
{
    EXPECT_EQ(sVeryEarly.mText.size(), 500u);
    EXPECT_NE(sVeryEarly.mBlock, nullptr);
    EXPECT_NE(sEarly.mBlock, nullptr);
}

TEST(SmallBlockThreadsDeathTest, ProcessEndsWhileThreadsAllocate_ItEndsWell)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            static std::atomic<bool> isRunning{false};
            std::thread([] {
                for (;;) {
                    UTF16String text(3000, static_cast<unsigned short>('x'));
                    isRunning.store(true);
                }
            }).detach();
            while (!isRunning.load()) {
                std::this_thread::yield();
            }
            // From here on static destructors run while the other thread continues.
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
