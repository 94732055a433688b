// The small block allocator, with its counters, compared with the fastest allocators that a host could use instead.
//
// Question: is our allocator fast enough for every string, record and counter of the libraries?
//
// "ours" is what a host calls: the header inlines the fast path into its callers. Two more rows are for reference: the
// same allocator called through a pointer, like a peer, and two calls through pointers that do nothing, which measures
// the cost of the calls alone: no allocator that is called through a pointer can be faster.
#include <AllocatorPeers.h>
#include <Harness.h>

#include <tvxcore/SmallBlockAllocator.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <string>

using tvxcore::utility::SmallBlockAllocator;

namespace {

constexpr std::size_t kBatch = 1000;
constexpr std::size_t kRing = 4096;
constexpr std::size_t kSizes[] = {16, 64, 256, 1024};

struct Ours
{
    static void* Allocate(std::size_t inSize) { return SmallBlockAllocator::Allocate(inSize); }
    static void Dispose(void* inBlock, std::size_t inSize) { SmallBlockAllocator::Dispose(inBlock, inSize); }
    static constexpr const char* kName = "ours";
};

// Each pointer is read once from a volatile, so that the compiler cannot see which function is called.
void* (*volatile sFindAllocate)(std::size_t) = &SmallBlockAllocator::Allocate;
void (*volatile sFindDispose)(void*, std::size_t) = &SmallBlockAllocator::Dispose;
void* (*sAllocate)(std::size_t) = sFindAllocate;
void (*sDispose)(void*, std::size_t) = sFindDispose;

struct OursByPointer
{
    static void* Allocate(std::size_t inSize) { return sAllocate(inSize); }
    static void Dispose(void* inBlock, std::size_t inSize) { sDispose(inBlock, inSize); }
    static constexpr const char* kName = "ours, through a pointer";
};

char sNothing[1024];
__attribute__((noinline)) void* GiveNothing(std::size_t)
{
    return sNothing;
}
__attribute__((noinline)) void TakeNothing(void*, std::size_t)
{
    Bench::ClobberMemory();
}
void* (*volatile sFindGiveNothing)(std::size_t) = &GiveNothing;
void (*volatile sFindTakeNothing)(void*, std::size_t) = &TakeNothing;
void* (*sGiveNothing)(std::size_t) = sFindGiveNothing;
void (*sTakeNothing)(void*, std::size_t) = sFindTakeNothing;

struct Nothing
{
    static void* Allocate(std::size_t inSize) { return sGiveNothing(inSize); }
    static void Dispose(void* inBlock, std::size_t inSize) { sTakeNothing(inBlock, inSize); }
    static constexpr const char* kName = "(two empty calls)";
};

template <class Peer, template <class> class Work>
void AddPeer(Bench::Group& ioGroup, std::size_t inSize)
{
    static const bool isLoaded = Peer::Load();
    if (isLoaded) {
        ioGroup.Peer(Peer::kName, Work<Peer>{inSize});
    }
}

// Runs the same work for this allocator and for every peer.
template <template <class> class Work>
void Run(Bench::Group inGroup, double inGoal, std::size_t inSize)
{
    inGroup.Ours(Ours::kName, Bench::AtMost(inGoal), Work<Ours>{inSize});
    inGroup.Ours(OursByPointer::kName, Bench::Goal{}, Work<OursByPointer>{inSize});
    AddPeer<Bench::Glibc, Work>(inGroup, inSize);
    AddPeer<Bench::Tcmalloc, Work>(inGroup, inSize);
    AddPeer<Bench::Jemalloc, Work>(inGroup, inSize);
    AddPeer<Bench::Mimalloc, Work>(inGroup, inSize);
    inGroup.Run();
}

template <class Peer>
struct Pairs
{
    std::size_t mSize;

    void operator()(std::uint64_t inCount) const
    {
        std::size_t size = mSize;
        for (; inCount != 0; --inCount) {
            Bench::DoNotOptimize(size);
            void* const block = Peer::Allocate(size);
            Bench::DoNotOptimize(block);
            Peer::Dispose(block, size);
        }
    }
};

void RunPairs(std::size_t inSize, unsigned inThreads)
{
    Bench::Group group("allocate and dispose in pairs, " + std::to_string(inSize) + " B, " + std::to_string(inThreads)
                       + (inThreads == 1 ? " thread" : " threads"));
    group.Threads(inThreads).Ours(Nothing::kName, Bench::Goal{}, Pairs<Nothing>{inSize});
    Run<Pairs>(group, 0.6, inSize);
}

std::array<std::uint16_t, kBatch> RandomOrder()
{
    std::array<std::uint16_t, kBatch> order;
    std::iota(order.begin(), order.end(), static_cast<std::uint16_t>(0));
    std::shuffle(order.begin(), order.end(), std::mt19937(12345));
    return order;
}

const std::array<std::uint16_t, kBatch> kOrder = RandomOrder();

// Each block is written once, like any block in real use.
template <class Peer>
struct Batches
{
    std::size_t mSize;

    void operator()(std::uint64_t inCount) const
    {
        static std::array<void*, kBatch> blocks;
        for (; inCount != 0; inCount -= kBatch) {
            for (void*& block : blocks) {
                block = Peer::Allocate(mSize);
                *static_cast<volatile char*>(block) = 1;
            }
            for (const std::uint16_t index : kOrder) {
                Peer::Dispose(blocks[index], mSize);
            }
        }
    }
};

// A ring buffer with one producer and one consumer. Each end caches the other's position and reads the shared one only
// when the cached value is exhausted, so that the ring costs little compared with the allocator.
template <class Peer>
struct Ring
{
    std::size_t mSize;

    struct Places
    {
        alignas(64) std::atomic<std::uint64_t> mWritten{0};
        alignas(64) std::atomic<std::uint64_t> mRead{0};
        alignas(64) std::array<void*, kRing> mBlocks;
    };

    void operator()(std::uint64_t inCount, unsigned inThread) const
    {
        static Places places;
        if (inThread == 0) {
            Produce(places, inCount);
        } else {
            Consume(places, inCount);
        }
    }

    void Produce(Places& ioPlaces, std::uint64_t inCount) const
    {
        std::uint64_t written = ioPlaces.mWritten.load(std::memory_order_relaxed);
        std::uint64_t read = ioPlaces.mRead.load(std::memory_order_acquire);
        for (; inCount != 0; --inCount) {
            void* const block = Peer::Allocate(mSize);
            *static_cast<volatile char*>(block) = 1;
            while (written - read == kRing) {
                read = ioPlaces.mRead.load(std::memory_order_acquire);
            }
            ioPlaces.mBlocks[written % kRing] = block;
            ioPlaces.mWritten.store(++written, std::memory_order_release);
        }
    }

    void Consume(Places& ioPlaces, std::uint64_t inCount) const
    {
        std::uint64_t read = ioPlaces.mRead.load(std::memory_order_relaxed);
        std::uint64_t written = read;
        for (; inCount != 0; --inCount) {
            while (written == read) {
                written = ioPlaces.mWritten.load(std::memory_order_acquire);
            }
            void* const block = ioPlaces.mBlocks[read % kRing];
            ioPlaces.mRead.store(++read, std::memory_order_release);
            Peer::Dispose(block, mSize);
        }
    }
};

} // namespace

int main(int inCount, char** inArguments)
{
    Bench::RestartWithLargerStaticTls(inArguments);
    Bench::Start(inCount, inArguments);
    for (const unsigned threads : {1u, 2u}) {
        for (const std::size_t size : kSizes) {
            RunPairs(size, threads);
        }
    }
    for (const std::size_t size : kSizes) {
        Run<Batches>(Bench::Group("batches of 1000 freed in random order, " + std::to_string(size) + " B").Step(kBatch),
                     0.8, size);
    }
    for (const std::size_t size : kSizes) {
        Run<Ring>(Bench::Group("producer allocates, consumer disposes, ring of 4096, " + std::to_string(size) + " B")
                      .Threads(2),
                  0.8, size);
    }
    return Bench::Finish();
}
