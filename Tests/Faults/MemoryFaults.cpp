#include "MemoryFaults.h"

#include <AllocationFaults.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <boost/thread/exceptions.hpp>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <optional>

namespace {

using ORLTest::MemoryDoor;

struct Plan
{
    bool mIsArmed = false;
    MemoryDoor mDoor = MemoryDoor::kHeap;
    unsigned mFirst = 0;
    bool mAllFurther = false;
    unsigned mAsked = 0;
    unsigned mRefused = 0;
};
thread_local Plan tPlan;

std::atomic<std::int64_t> sOwed[3];

namespace Faults = tvxcore::utility::AllocationFaults;
std::optional<Faults::Scope> sScope;

bool Refuses(MemoryDoor inDoor)
{
    Plan& plan = tPlan;
    if (!plan.mIsArmed || plan.mDoor != inDoor) {
        return false;
    }
    const unsigned number = ++plan.mAsked;
    const bool refuses = plan.mAllFurther ? number >= plan.mFirst : number == plan.mFirst;
    plan.mRefused += refuses ? 1 : 0;
    return refuses;
}

void Owe(MemoryDoor inDoor, std::int64_t inCount)
{
    sOwed[static_cast<int>(inDoor)].fetch_add(inCount, std::memory_order_relaxed);
}

// Returns null if the request is refused or the heap is exhausted.
void* FromHeap(std::size_t inSize) noexcept
{
    void* const block = Refuses(MemoryDoor::kHeap) ? nullptr : std::malloc(inSize != 0 ? inSize : 1);
    Owe(MemoryDoor::kHeap, block != nullptr ? 1 : 0);
    return block;
}

void* FromHeapOrThrow(std::size_t inSize)
{
    void* const block = FromHeap(inSize);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void ToHeap(void* inBlock)
{
    if (inBlock != nullptr) {
        Owe(MemoryDoor::kHeap, -1);
        std::free(inBlock);
    }
}

} // namespace

// The C++ heap of this program. Every form of new and delete is replaced, because a sanitizer's forms do not call each
// other. Over-aligned forms are not watched.
void* operator new(std::size_t inSize)
{
    return FromHeapOrThrow(inSize);
}

void* operator new[](std::size_t inSize)
{
    return FromHeapOrThrow(inSize);
}

void* operator new(std::size_t inSize, const std::nothrow_t&) noexcept
{
    return FromHeap(inSize);
}

void* operator new[](std::size_t inSize, const std::nothrow_t&) noexcept
{
    return FromHeap(inSize);
}

void operator delete(void* inBlock) noexcept
{
    ToHeap(inBlock);
}

void operator delete[](void* inBlock) noexcept
{
    ToHeap(inBlock);
}

void operator delete(void* inBlock, std::size_t) noexcept
{
    ToHeap(inBlock);
}

void operator delete[](void* inBlock, std::size_t) noexcept
{
    ToHeap(inBlock);
}

void operator delete(void* inBlock, const std::nothrow_t&) noexcept
{
    ToHeap(inBlock);
}

void operator delete[](void* inBlock, const std::nothrow_t&) noexcept
{
    ToHeap(inBlock);
}

// The linker redirects every call of these functions to the wrappers, and calls of the "real" ones to the originals.
#define ORL_SYMBOL(kind, name) __asm__("__" kind "_" name)
#define ORL_ALLOCATE_PAGES "_ZN3ORL10PageMemory8Platform18AllocatePages_ImplE" ORL_MANGLED_SIZE
#define ORL_FREE_PAGES "_ZN3ORL10PageMemory8Platform14FreePages_ImplEPv" ORL_MANGLED_SIZE

void* RealAllocatePages(std::size_t) ORL_SYMBOL("real", ORL_ALLOCATE_PAGES);
void RealFreePages(void*, std::size_t) ORL_SYMBOL("real", ORL_FREE_PAGES);
void* WrappedAllocatePages(std::size_t) ORL_SYMBOL("wrap", ORL_ALLOCATE_PAGES);
void WrappedFreePages(void*, std::size_t) ORL_SYMBOL("wrap", ORL_FREE_PAGES);

void* WrappedAllocatePages(std::size_t inSize)
{
    void* const pages = Refuses(MemoryDoor::kPages) ? nullptr : RealAllocatePages(inSize);
    Owe(MemoryDoor::kPages, pages != nullptr ? 1 : 0);
    return pages;
}

void WrappedFreePages(void* inPages, std::size_t inSize)
{
    Owe(MemoryDoor::kPages, -1);
    RealFreePages(inPages, inSize);
}

namespace ORLTest {

namespace {

constexpr unsigned kMostRequests = 10000; // of one inWork; with more, the sweep would not end

void Attempt(const std::function<void()>& inWork)
{
    try {
        inWork();
    } catch (const std::bad_alloc&) {
    } catch (const boost::thread_resource_error&) { // no memory for a new thread
    }
}

// Runs inWork with request 1, 2, 3 ... refused, until inWork makes fewer requests.
void SweepDoor(MemoryDoor inDoor, bool inAllFurther, const std::function<void()>& inWork, const std::function<void()>& inCheck)
{
    unsigned refused = 1;
    for (unsigned number = 1; refused != 0; ++number) {
        SCOPED_TRACE("door " + std::to_string(static_cast<int>(inDoor)) + ", request " + std::to_string(number)
                     + (inAllFurther ? " and all further" : ""));
        const std::int64_t owed[] = {MemoryOwed(kMemoryDoors[0]), MemoryOwed(kMemoryDoors[1]), MemoryOwed(kMemoryDoors[2])};
        {
            const MemoryFaults faults(inDoor, number, inAllFurther);
            Attempt(inWork);
            refused = faults.Refused();
        }
        for (const MemoryDoor door : kMemoryDoors) {
            if (door == MemoryDoor::kHeap && !WholeHeapIsWatched()) {
                continue;
            }
            ASSERT_EQ(owed[static_cast<int>(door)], MemoryOwed(door)) << "left behind at door " << static_cast<int>(door);
        }
        inCheck();
        if (testing::Test::HasFailure()) {
            return;
        }
        ASSERT_LT(number, kMostRequests);
    }
}

} // namespace

MemoryFaults::MemoryFaults(MemoryDoor inDoor, unsigned inNumber, bool inAllFurther) : mDoor(inDoor)
{
    if (inDoor == MemoryDoor::kSmallBlocks) {
        Faults::Plan plan;
        plan.mFirst = inNumber;
        plan.mHowMany = inAllFurther ? Faults::kAllFurther : 1;
        plan.mOfThisThreadOnly = true;
        sScope.emplace(plan);
        return;
    }
    tPlan = {true, inDoor, inNumber, inAllFurther, 0, 0};
}

MemoryFaults::~MemoryFaults()
{
    sScope.reset();
    tPlan.mIsArmed = false;
}

unsigned MemoryFaults::Refused() const
{
    if (mDoor == MemoryDoor::kSmallBlocks) {
        return static_cast<unsigned>(sScope->Refused());
    }
    return tPlan.mRefused;
}

std::int64_t MemoryOwed(MemoryDoor inDoor)
{
    tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot now{};
    if (inDoor == MemoryDoor::kSmallBlocks && tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(now)) {
        return static_cast<std::int64_t>(now.mSmallBlockCountCurrent);
    }
    return sOwed[static_cast<int>(inDoor)].load();
}

bool WholeHeapIsWatched()
{
    const std::int64_t before = MemoryOwed(MemoryDoor::kHeap);
    const std::string text(100, 'x'); // allocated by code of the standard library
    return MemoryOwed(MemoryDoor::kHeap) > before;
}

void SweepMemory(const std::function<void()>& inWork, const std::function<void()>& inCheck)
{
    inWork(); // the first run allocates caches that persist
    inCheck();
    for (const MemoryDoor door : kMemoryDoors) {
        SweepDoor(door, false, inWork, inCheck);
        SweepDoor(door, true, inWork, inCheck);
    }
}

} // namespace ORLTest
