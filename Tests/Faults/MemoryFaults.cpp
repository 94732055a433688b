#include "MemoryFaults.h"

#include <AllocationFaults.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <boost/thread/exceptions.hpp>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <optional>

namespace {

using ORLTest::FaultyAllocator;

struct Plan
{
    bool mIsArmed = false;
    FaultyAllocator mAllocator = FaultyAllocator::kHeap;
    unsigned mFirst = 0;
    bool mAllFurther = false;
    unsigned mAttempts = 0;
    unsigned mRefused = 0;
};
thread_local Plan tPlan;

std::atomic<std::int64_t> sOutstanding[3];

namespace Faults = tvxcore::utility::AllocationFaults;
std::optional<Faults::Scope> sScope;

bool Refuses(FaultyAllocator inAllocator)
{
    Plan& plan = tPlan;
    if (!plan.mIsArmed || plan.mAllocator != inAllocator) {
        return false;
    }
    const unsigned number = ++plan.mAttempts;
    const bool refuses = plan.mAllFurther ? number >= plan.mFirst : number == plan.mFirst;
    plan.mRefused += refuses ? 1 : 0;
    return refuses;
}

void AddOutstanding(FaultyAllocator inAllocator, std::int64_t inCount)
{
    sOutstanding[static_cast<int>(inAllocator)].fetch_add(inCount, std::memory_order_relaxed);
}

// Returns null if the request is to fail or the heap is exhausted.
void* FromHeap(std::size_t inSize) noexcept
{
    void* const block = Refuses(FaultyAllocator::kHeap) ? nullptr : std::malloc(inSize != 0 ? inSize : 1);
    AddOutstanding(FaultyAllocator::kHeap, block != nullptr ? 1 : 0);
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
        AddOutstanding(FaultyAllocator::kHeap, -1);
        std::free(inBlock);
    }
}

} // namespace

// The C++ heap of this program. All forms of new and delete except the over-aligned ones are replaced, because a
// sanitizer's forms do not call each other.
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

// The linker redirects every call to these functions to the wrappers, and calls to the "real" ones to the originals.
#define ORL_SYMBOL(kind, name) __asm__("__" kind "_" name)
#define ORL_ALLOCATE_PAGES "_ZN3ORL10PageMemory8Platform18AllocatePages_ImplE" ORL_MANGLED_SIZE
#define ORL_FREE_PAGES "_ZN3ORL10PageMemory8Platform14FreePages_ImplEPv" ORL_MANGLED_SIZE

void* RealAllocatePages(std::size_t) ORL_SYMBOL("real", ORL_ALLOCATE_PAGES);
void RealFreePages(void*, std::size_t) ORL_SYMBOL("real", ORL_FREE_PAGES);
void* WrappedAllocatePages(std::size_t) ORL_SYMBOL("wrap", ORL_ALLOCATE_PAGES);
void WrappedFreePages(void*, std::size_t) ORL_SYMBOL("wrap", ORL_FREE_PAGES);

void* WrappedAllocatePages(std::size_t inSize)
{
    void* const pages = Refuses(FaultyAllocator::kPages) ? nullptr : RealAllocatePages(inSize);
    AddOutstanding(FaultyAllocator::kPages, pages != nullptr ? 1 : 0);
    return pages;
}

void WrappedFreePages(void* inPages, std::size_t inSize)
{
    AddOutstanding(FaultyAllocator::kPages, -1);
    RealFreePages(inPages, inSize);
}

namespace ORLTest {

namespace {

constexpr unsigned kMaxRequests = 10000; // limit of one sweep: inWork must make fewer requests

void Attempt(const std::function<void()>& inWork)
{
    try {
        inWork();
    } catch (const std::bad_alloc&) {
    } catch (const boost::thread_resource_error&) { // the system had no memory for a new thread
    }
}

// Runs inWork with request 1, 2, 3 ... failing, until inWork makes too few requests to reach the failing one.
void SweepAllocator(FaultyAllocator inAllocator, bool inAllFurther, const std::function<void()>& inWork,
                    const std::function<void()>& inCheck)
{
    unsigned refused = 1;
    for (unsigned number = 1; refused != 0; ++number) {
        SCOPED_TRACE("door " + std::to_string(static_cast<int>(inAllocator)) + ", request " + std::to_string(number)
                     + (inAllFurther ? " and all further" : ""));
        const std::int64_t balances[] = {OutstandingMemory(kFaultyAllocators[0]),
                                         OutstandingMemory(kFaultyAllocators[1]),
                                         OutstandingMemory(kFaultyAllocators[2])};
        {
            const MemoryFaults faults(inAllocator, number, inAllFurther);
            Attempt(inWork);
            refused = faults.Refused();
        }
        for (const FaultyAllocator allocator : kFaultyAllocators) {
            if (allocator == FaultyAllocator::kHeap && !HeapIsFullyIntercepted()) {
                continue;
            }
            ASSERT_EQ(balances[static_cast<int>(allocator)], OutstandingMemory(allocator))
                << "left behind at door " << static_cast<int>(allocator);
        }
        inCheck();
        if (testing::Test::HasFailure()) {
            return;
        }
        ASSERT_LT(number, kMaxRequests);
    }
}

} // namespace

MemoryFaults::MemoryFaults(FaultyAllocator inAllocator, unsigned inNumber, bool inAllFurther) : mAllocator(inAllocator)
{
    if (inAllocator == FaultyAllocator::kSmallBlocks) {
        Faults::Plan plan;
        plan.mFirst = inNumber;
        plan.mFailureCount = inAllFurther ? Faults::kAllFurther : 1;
        plan.mOfThisThreadOnly = true;
        sScope.emplace(plan);
        return;
    }
    tPlan = {true, inAllocator, inNumber, inAllFurther, 0, 0};
}

MemoryFaults::~MemoryFaults()
{
    sScope.reset();
    tPlan.mIsArmed = false;
}

unsigned MemoryFaults::Refused() const
{
    if (mAllocator == FaultyAllocator::kSmallBlocks) {
        return static_cast<unsigned>(sScope->Refused());
    }
    return tPlan.mRefused;
}

std::int64_t OutstandingMemory(FaultyAllocator inAllocator)
{
    tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot now{};
    if (inAllocator == FaultyAllocator::kSmallBlocks
        && tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(now)) {
        return static_cast<std::int64_t>(now.mSmallBlockCountCurrent);
    }
    return sOutstanding[static_cast<int>(inAllocator)].load();
}

bool HeapIsFullyIntercepted()
{
    const std::int64_t before = OutstandingMemory(FaultyAllocator::kHeap);
    const std::string text(100, 'x'); // allocated by standard library code
    return OutstandingMemory(FaultyAllocator::kHeap) > before;
}

void SweepMemory(const std::function<void()>& inWork, const std::function<void()>& inCheck)
{
    inWork(); // the first run allocates caches that persist
    inCheck();
    for (const FaultyAllocator allocator : kFaultyAllocators) {
        SweepAllocator(allocator, false, inWork, inCheck);
        SweepAllocator(allocator, true, inWork, inCheck);
    }
}

} // namespace ORLTest
