// Fails each allocation in the recycler.
#include "MemoryFaults.h"

#include <Memory/MemoryRecyclerLifecycle.h>
#include <ORLMemoryRecycler.h>

#include <tvxcore/ErrorManager.h>

#include <cstring>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr std::size_t kLarge = 65536;

// If the recycler's lock were still held, the new thread would hang; if a size were wrong, Purge would not reach 0.
void ExpectUsable(MemoryRecycler& ioRecycler)
{
    std::thread([&ioRecycler] {
        MemoryBuffer buffer = ioRecycler.AllocateBuffer(kLarge);
        ASSERT_NE(nullptr, buffer.GetBuffer());
        std::memset(buffer.GetBuffer(), 1, kLarge);
        const std::size_t before = ioRecycler.GetSize();
        ioRecycler.RecycleBuffer(buffer);
        EXPECT_EQ(before + kLarge, ioRecycler.GetSize());
        EXPECT_EQ(before + kLarge, ioRecycler.Purge(0));
        EXPECT_EQ(0u, ioRecycler.GetSize());
    }).join();
}

} // namespace

TEST(MemoryRecyclerSweep, AllocateAndRecycle_LeaveNothingBehind)
{
    MemoryRecycler recycler;
    const auto work = [&recycler] {
        for (const std::size_t size : {std::size_t{100}, kLarge, 3 * kLarge}) {
            MemoryBuffer buffer = recycler.AllocateBuffer(size);
            recycler.RecycleBuffer(buffer);
        }
        recycler.Purge(0);
    };
    const auto workAndPurge = [&recycler, &work] {
        try {
            work();
        } catch (...) {
            recycler.Purge(0);
            throw;
        }
    };
    SweepMemory(workAndPurge, [&recycler] { ExpectUsable(recycler); });
}

// Frees memory after an allocation failure by purging the pool from another thread, which would hang if the allocating
// thread held the pool's lock.
class PurgingManager : public tvxcore::config::ErrorManager
{
public:
    explicit PurgingManager(MemoryRecycler& ioRecycler)
        : mRecycler(ioRecycler), mOld(tvxcore::config::InstallErrorManager(this))
    {
    }
    ~PurgingManager() override { tvxcore::config::InstallErrorManager(mOld); }

    bool OnAllocationFailure(std::size_t inBytes) override
    {
        mSizes.push_back(inBytes);
        std::thread([this] { mFreed += mRecycler.Purge(0); }).join();
        return true;
    }

    std::vector<std::size_t> mSizes;
    std::size_t mFreed = 0;

private:
    MemoryRecycler& mRecycler;
    tvxcore::config::ErrorManager* const mOld;
};

TEST(MemoryRecyclerFaults, ManagerThatPurgesThePool_HasTheSecondAttemptSucceed)
{
    MemoryRecycler recycler;
    MemoryBuffer pooled = recycler.AllocateBuffer(kLarge);
    recycler.RecycleBuffer(pooled);
    ASSERT_EQ(kLarge, recycler.GetSize());
    PurgingManager manager(recycler);
    MemoryBuffer buffer;
    {
        const MemoryFaults noPages(FaultyAllocator::kPages, 1, false);
        const MemoryFaults noBlocks(FaultyAllocator::kSmallBlocks, 1, false); // used if no pages are available
        buffer = recycler.AllocateBuffer(2 * kLarge - 1);
    }
    EXPECT_EQ(std::vector<std::size_t>{2 * kLarge}, manager.mSizes) << "asked once, with the rounded size";
    EXPECT_EQ(kLarge, manager.mFreed);
    EXPECT_EQ(0u, recycler.GetSize());
    EXPECT_TRUE(buffer.IsVirtual());
    std::memset(buffer.GetBuffer(), 1, buffer.GetSize());
    recycler.RecycleBuffer(buffer);
    EXPECT_EQ(2 * kLarge, recycler.GetSize());
}

TEST(MemoryRecyclerSweep, MissesThatMakeRoomAndLimitsThatShrink_LeaveNothingBehind)
{
    MemoryRecycler recycler;
    const auto work = [&recycler] {
        struct AtEnd
        {
            MemoryRecycler& mRecycler;
            MemoryBuffer mBuffers[3];
            ~AtEnd()
            {
                for (MemoryBuffer& buffer : mBuffers) {
                    mRecycler.RecycleBuffer(buffer);
                }
                mRecycler.SetSize(0);
            }
        } owner{recycler, {}};
        recycler.SetSize(2 * kLarge);
        owner.mBuffers[0] = recycler.AllocateBuffer(kLarge);
        owner.mBuffers[1] = recycler.AllocateBuffer(kLarge);
        recycler.RecycleBuffer(owner.mBuffers[0]);
        owner.mBuffers[0] = MemoryBuffer();
        owner.mBuffers[2] = recycler.AllocateBuffer(2 * kLarge); // forces an eviction
        recycler.SetSize(kLarge);
    };
    SweepMemory(work, [&recycler] {
        EXPECT_EQ(0u, recycler.GetSize());
        recycler.SetSize(50000000);
        ExpectUsable(recycler);
    });
}

TEST(MemoryRecyclerSweep, Wrapper_GivesBackWhatItHas)
{
    CreateMemoryRecycler();
    const auto work = [] {
        try {
            const MemoryBufferWrapper small(1000);
            const MemoryBufferWrapper large(kLarge);
            const MemoryBufferWrapper another(kLarge);
        } catch (...) {
            MemoryRecycler::Instance()->Purge(0);
            throw;
        }
        MemoryRecycler::Instance()->Purge(0);
    };
    SweepMemory(work, [] { ExpectUsable(*MemoryRecycler::Instance().operator->()); });
    DropMemoryRecycler();
}

TEST(MemoryRecyclerSweep, StartAndStop_LeaveNothingBehind)
{
    const auto work = [] {
        CreateMemoryRecycler();
        DropMemoryRecycler();
    };
    SweepMemory(work, [] {
        CreateMemoryRecycler();
        ExpectUsable(*MemoryRecycler::Instance().operator->());
        DropMemoryRecycler();
    });
}
