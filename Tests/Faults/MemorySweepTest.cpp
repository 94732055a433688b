// The recycler with its memory refused at every place.
#include "MemoryFaults.h"

#include <MemoryRecyclerLifecycle.h>
#include <ORLMemoryRecycler.h>

#include <cstring>
#include <thread>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr std::size_t kLarge = 65536;

// A lock that was left held would hold this thread for ever; a pool that counts wrong would not come to 0.
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
        owner.mBuffers[2] = recycler.AllocateBuffer(2 * kLarge); // makes room
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
