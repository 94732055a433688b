// Question: what does a reused large buffer cost? The answer decides whether a host may request one per frame.
//
// The pool contains one buffer of the requested size per thread. Groups with "every page written" touch each page once,
// as any code that fills a buffer does; their row "the writes alone" writes to one fixed buffer, a cost that no pool
// can avoid. The peers are libavutil's buffer pool and a new mapping each time.
#include <Harness.h>

#include <ORLMemoryRecycler.h>

extern "C" {
#include <libavutil/buffer.h>
}

#include <string>
#include <sys/mman.h>

namespace {

constexpr std::size_t kPage = 4096;

void Write(void* inBuffer, std::size_t inSize)
{
    volatile unsigned char* const bytes = static_cast<unsigned char*>(inBuffer);
    for (std::size_t at = 0; at < inSize; at += kPage) {
        bytes[at] = 1;
    }
}

class OurPool
{
public:
    explicit OurPool(std::size_t inSize) : mSize(inSize) { mRecycler.SetSize(std::size_t{1} << 30); }

    template <class Use>
    void UseBuffer(Use inUse)
    {
        ORL::MemoryBuffer buffer = mRecycler.AllocateBuffer(mSize);
        inUse(buffer.GetBuffer());
        mRecycler.RecycleBuffer(buffer);
    }

private:
    ORL::MemoryRecycler mRecycler;
    const std::size_t mSize;
};

class AvPool
{
public:
    explicit AvPool(std::size_t inSize) : mPool(av_buffer_pool_init(inSize, nullptr)) {}
    ~AvPool() { av_buffer_pool_uninit(&mPool); }
    AvPool(const AvPool&) = delete;
    AvPool& operator=(const AvPool&) = delete;

    template <class Use>
    void UseBuffer(Use inUse)
    {
        AVBufferRef* buffer = av_buffer_pool_get(mPool);
        inUse(buffer->data);
        av_buffer_unref(&buffer);
    }

private:
    AVBufferPool* mPool;
};

class KeptBuffers
{
public:
    explicit KeptBuffers(std::size_t inSize)
    {
        for (ORL::MemoryBuffer& buffer : mBuffers) {
            buffer = mRecycler.AllocateBuffer(inSize);
        }
    }
    ~KeptBuffers()
    {
        for (ORL::MemoryBuffer& buffer : mBuffers) {
            mRecycler.RecycleBuffer(buffer);
        }
    }
    KeptBuffers(const KeptBuffers&) = delete;
    KeptBuffers& operator=(const KeptBuffers&) = delete;

    void* BufferOf(unsigned inThread) const { return mBuffers[inThread].GetBuffer(); }

private:
    ORL::MemoryRecycler mRecycler;
    ORL::MemoryBuffer mBuffers[2];
};

class FreshMapping
{
public:
    explicit FreshMapping(std::size_t inSize) : mSize(inSize) {}

    template <class Use>
    void UseBuffer(Use inUse)
    {
        void* const pages = ::mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        inUse(pages);
        ::munmap(pages, mSize);
    }

private:
    const std::size_t mSize;
};

std::string Title(std::size_t inSize, unsigned inThreads, bool inWritten)
{
    return "take and give back " + std::to_string(inSize / 1024) + " KiB, " + std::to_string(inThreads)
           + (inThreads == 1 ? " thread" : " threads") + (inWritten ? ", every page written" : "");
}

void Compare(std::size_t inSize, unsigned inThreads, bool inWritten)
{
    OurPool ours(inSize);
    AvPool av(inSize);
    FreshMapping fresh(inSize);
    const auto use = [inSize, inWritten](void* inBuffer) {
        Bench::DoNotOptimize(inBuffer);
        if (inWritten) {
            Write(inBuffer, inSize);
        }
    };
    const auto repeat = [&use](auto& ioPool) {
        return [&ioPool, &use](std::uint64_t n, unsigned) {
            while (n-- != 0) {
                ioPool.UseBuffer(use);
            }
        };
    };
    Bench::Group group(Title(inSize, inThreads, inWritten));
    group.Threads(inThreads)
        .Ours("MemoryRecycler", Bench::AtMost(0.5, "av_buffer_pool_get and unref"), repeat(ours))
        .Ours("MemoryRecycler (again)", Bench::AtMost(0.05, "a fresh mapping"), repeat(ours))
        .Peer("av_buffer_pool_get and unref", repeat(av))
        .Peer("a fresh mapping", repeat(fresh));
    const KeptBuffers kept(inSize);
    if (inWritten) {
        group.Peer("the writes alone", [&](std::uint64_t n, unsigned thread) {
            while (n-- != 0) {
                use(kept.BufferOf(thread));
            }
        });
    }
    group.Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    for (const std::size_t size : {std::size_t{64} << 10, std::size_t{1} << 20, std::size_t{16} << 20}) {
        for (const unsigned threads : {1u, 2u}) {
            Compare(size, threads, false);
            Compare(size, threads, true);
        }
    }
    return Bench::Finish();
}
