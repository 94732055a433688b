// Question: what do callbacks, busy lists and records cost on top of the io_uring reads?
//
// The library, a bare liburing loop and fio read the same file of 1 GiB unbuffered, in turn. Each round reads 256 MiB.
// The library and the liburing loops read into the same memory, from the library's large-buffer pool; fio uses its own
// memory, in small pages, which makes it slower. The bare loop does the minimum for reads into arbitrary memory.
// Another loop registers its buffers and file with the kernel beforehand, which code that reads into a caller's buffers
// cannot do.
#include "Harness.h"

#include <ORLAsyncFileReader.h>
#include <ORLFoundation.h>
#include <ORLHostPath.h>
#include <ORLMemoryRecycler.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <liburing.h>
#include <memory>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/uio.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::uint64_t kFileSize = std::uint64_t{1} << 30;
constexpr std::uint64_t kRoundSize = std::uint64_t{256} << 20;

struct Work
{
    std::string mFile;
    std::uint32_t mBlock;
    std::uint32_t mDepth;
    bool mIsRandom;

    std::uint64_t Reads() const { return (Bench::IsQuick() ? kRoundSize / 16 : kRoundSize) / mBlock; }
    std::uint64_t Blocks() const { return kFileSize / mBlock; }
    std::string Title() const
    {
        return std::to_string(mBlock / 1024) + " KiB " + (mIsRandom ? "random" : "sequential") + ", "
               + std::to_string(mDepth) + " in flight";
    }
};

// Generates the same sequence of positions for every rival.
class Positions
{
public:
    explicit Positions(const Work& inWork) : mWork(inWork) {}

    std::uint64_t Next()
    {
        mState = mState * 6364136223846793005u + 1442695040888963407u;
        const std::uint64_t block = mWork.mIsRandom ? (mState >> 33) % mWork.Blocks() : mCount % mWork.Blocks();
        ++mCount;
        return block * mWork.mBlock;
    }

private:
    const Work& mWork;
    std::uint64_t mState = 1;
    std::uint64_t mCount = 0;
};

[[noreturn]] void Fail(const char* inWhat)
{
    std::fprintf(stderr, "bench_AsyncReadBench: %s\n", inWhat);
    std::exit(1);
}

double ProcessorMicroseconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto microseconds = [](const timeval& inTime) {
        return static_cast<double>(inTime.tv_sec) * 1e6 + static_cast<double>(inTime.tv_usec);
    };
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

// --- ours ------------------------------------------------------------------------------------------------------------

class OurStream
{
public:
    OurStream(const Work& inWork, char* inMemory) : mWork(inWork), mPositions(inWork), mMemory(inMemory) {}

    void Run()
    {
        if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(mWork.mFile), mReader) != ORL::kSuccess) {
            Fail("our reader cannot open the file");
        }
        for (std::uint32_t i = 0; i < mWork.mDepth; ++i) {
            Queue(mMemory + std::size_t{i} * mWork.mBlock);
        }
        mReader.WaitForPendingReads();
        if (mHasFailed) {
            Fail("one of our reads failed");
        }
    }

private:
    void Queue(void* inBuffer)
    {
        // The main thread queues the first read into each buffer, the completion thread the later ones. Both may run
        // concurrently, so the counter is atomic.
        if (mQueued.fetch_add(1, std::memory_order_relaxed) < mWork.Reads()) {
            mReader.QueueReadRequest(NextPosition(), mWork.mBlock, inBuffer, &OnRead, this, nullptr, nullptr);
        }
    }

    std::uint64_t NextPosition()
    {
        while (mIsWalking.test_and_set(std::memory_order_acquire)) {
        }
        const std::uint64_t position = mPositions.Next();
        mIsWalking.clear(std::memory_order_release);
        return position;
    }

    static void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int inSize, unsigned int inBytesRead,
                       void* inBuffer, void* inStream, void*, void*, int inResult)
    {
        OurStream& stream = *static_cast<OurStream*>(inStream);
        stream.mHasFailed |= inResult != ORL::kSuccess || inBytesRead != inSize;
        stream.Queue(inBuffer);
    }

    const Work& mWork;
    Positions mPositions;
    char* mMemory;
    ORL::AsyncFileReader mReader;
    std::atomic<std::uint64_t> mQueued{0};
    std::atomic_flag mIsWalking = ATOMIC_FLAG_INIT;
    bool mHasFailed = false;
};

// --- a bare loop -----------------------------------------------------------------------------------------------------

class BareLoop
{
public:
    BareLoop(const Work& inWork, char* inMemory, bool inIsRegistered)
        : mWork(inWork), mPositions(inWork), mMemory(inMemory), mIsRegistered(inIsRegistered)
    {
        mFile = ::open(inWork.mFile.c_str(), O_RDONLY | O_DIRECT);
        io_uring_params parameters{};
        parameters.flags = IORING_SETUP_SINGLE_ISSUER | IORING_SETUP_DEFER_TASKRUN;
        if (mFile < 0 || ::io_uring_queue_init_params(256, &mRing, &parameters) != 0) {
            Fail("the bare loop cannot start");
        }
        if (inIsRegistered) {
            Register();
        }
    }

    ~BareLoop()
    {
        ::io_uring_queue_exit(&mRing);
        ::close(mFile);
    }

    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    void Run()
    {
        for (std::uint32_t i = 0; i < mWork.mDepth; ++i) {
            Put(i);
        }
        while (mInFlight != 0) {
            ::io_uring_submit_and_wait(&mRing, 1);
            Reap();
        }
    }

private:
    void Register()
    {
        std::vector<iovec> buffers;
        for (std::uint32_t i = 0; i < mWork.mDepth; ++i) {
            buffers.push_back(iovec{BufferAt(i), mWork.mBlock});
        }
        if (::io_uring_register_buffers(&mRing, buffers.data(), mWork.mDepth) != 0
            || ::io_uring_register_files(&mRing, &mFile, 1) != 0) {
            Fail("the kernel takes no registered buffers");
        }
    }

    char* BufferAt(std::uint32_t inSlot) const { return mMemory + std::size_t{inSlot} * mWork.mBlock; }

    void Put(std::uint32_t inSlot)
    {
        if (mQueued == mWork.Reads()) {
            return;
        }
        ++mQueued;
        ++mInFlight;
        io_uring_sqe* const entry = ::io_uring_get_sqe(&mRing);
        if (mIsRegistered) {
            ::io_uring_prep_read_fixed(entry, 0, BufferAt(inSlot), mWork.mBlock, mPositions.Next(),
                                       static_cast<int>(inSlot));
            entry->flags |= IOSQE_FIXED_FILE;
        } else {
            ::io_uring_prep_read(entry, mFile, BufferAt(inSlot), mWork.mBlock, mPositions.Next());
        }
        ::io_uring_sqe_set_data64(entry, inSlot);
    }

    void Reap()
    {
        io_uring_cqe* entries[64];
        unsigned count = 0;
        while ((count = ::io_uring_peek_batch_cqe(&mRing, entries, 64)) != 0) {
            for (unsigned i = 0; i < count; ++i) {
                if (entries[i]->res != static_cast<int>(mWork.mBlock)) {
                    Fail("a read of the bare loop failed");
                }
                --mInFlight;
                Put(static_cast<std::uint32_t>(entries[i]->user_data));
            }
            ::io_uring_cq_advance(&mRing, count);
        }
    }

    const Work& mWork;
    Positions mPositions;
    char* mMemory;
    bool mIsRegistered;
    int mFile = -1;
    io_uring mRing{};
    std::uint64_t mQueued = 0;
    std::uint32_t mInFlight = 0;
};

// --- fio -------------------------------------------------------------------------------------------------------------

// Returns the bytes per second that fio measured, or 0 if it could not run.
double RunFio(const Work& inWork)
{
    const std::string command = "fio --name=read --readonly --filename='" + inWork.mFile + "' --direct=1 "
                                + "--ioengine=io_uring --rw=" + (inWork.mIsRandom ? "randread" : "read") + " --bs="
                                + std::to_string(inWork.mBlock) + " --iodepth=" + std::to_string(inWork.mDepth)
                                + " --io_size=" + std::to_string(inWork.Reads() * inWork.mBlock)
                                + " --size=" + std::to_string(kFileSize) + " --randseed=1 --minimal 2>/dev/null";
    FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return 0;
    }
    char line[8192] = "";
    const bool hasLine = std::fgets(line, sizeof(line), pipe) != nullptr;
    if (::pclose(pipe) != 0 || !hasLine) {
        return 0;
    }
    // In terse output the seventh field is the read bandwidth in KiB per second.
    const char* field = line;
    for (int i = 0; i < 6 && field != nullptr; ++i) {
        field = std::strchr(field, ';');
        field = field != nullptr ? field + 1 : nullptr;
    }
    return field != nullptr ? std::atof(field) * 1024 : 0;
}

// --- the table -------------------------------------------------------------------------------------------------------

template <class Loop>
double MegabytesPerSecond(const Work& inWork, Loop&& inLoop)
{
    Bench::UseAllProcessors();
    const double start = Bench::NowInNanoseconds();
    inLoop();
    return static_cast<double>(inWork.Reads() * inWork.mBlock) / (Bench::NowInNanoseconds() - start) * 1e3;
}

template <class Loop>
double MicrosecondsPerRead(const Work& inWork, Loop&& inLoop)
{
    Bench::UseAllProcessors();
    const double start = ProcessorMicroseconds();
    inLoop();
    return (ProcessorMicroseconds() - start) / static_cast<double>(inWork.Reads());
}

void CompareSpeed(const Work& inWork, char* inMemory, bool inHasFio)
{
    Bench::Group group(inWork.Title());
    group.Unit("MB/s", true).Operations(1);
    group.Ours("AsyncFileReader", Bench::AtLeast(0.95), [&, inMemory](std::uint64_t) {
        return MegabytesPerSecond(inWork, [&] { OurStream(inWork, inMemory).Run(); });
    });
    group.Peer("bare liburing loop", [&, inMemory](std::uint64_t) {
        return MegabytesPerSecond(inWork, [&] { BareLoop(inWork, inMemory, false).Run(); });
    });
    if (inHasFio) {
        group.Peer("fio io_uring", [&](std::uint64_t) {
            Bench::UseAllProcessors();
            return RunFio(inWork) / 1e6;
        });
    }
    group.Run();
}

void CompareCost(const Work& inWork, char* inMemory)
{
    Bench::Group group(inWork.Title() + ", processor time a read");
    group.Unit("us").Operations(1);
    group.Ours("AsyncFileReader", Bench::AtMost(1.5, "bare liburing loop"), [&, inMemory](std::uint64_t) {
        return MicrosecondsPerRead(inWork, [&] { OurStream(inWork, inMemory).Run(); });
    });
    group.Peer("bare liburing loop", [&, inMemory](std::uint64_t) {
        return MicrosecondsPerRead(inWork, [&] { BareLoop(inWork, inMemory, false).Run(); });
    });
    group.Peer("bare loop, all registered", [&, inMemory](std::uint64_t) {
        return MicrosecondsPerRead(inWork, [&] { BareLoop(inWork, inMemory, true).Run(); });
    });
    group.Run();
}

// Creates the file in the program's folder, unless an earlier run left it there.
std::string MakeFile()
{
    namespace fs = std::filesystem;
    const fs::path path = fs::read_symlink("/proc/self/exe").parent_path() / "async-read.bin";
    std::error_code ignored;
    if (fs::file_size(path, ignored) != kFileSize) {
        std::ofstream file(path, std::ios::binary);
        std::mt19937_64 random(1);
        std::vector<std::uint64_t> words(std::size_t{1} << 17);
        for (std::uint64_t written = 0; written < kFileSize; written += words.size() * sizeof(words[0])) {
            for (std::uint64_t& word : words) {
                word = random();
            }
            file.write(reinterpret_cast<const char*>(words.data()),
                       static_cast<std::streamsize>(words.size() * sizeof(words[0])));
        }
        if (!file.flush()) {
            Fail("the file of 1 GiB cannot be written");
        }
    }
    ::sync();
    return path.string();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    ORL::Foundation::Initialize();
    {
        const std::string file = MakeFile();
        ORL::MemoryBufferWrapper memory(std::size_t{128} << 20);
        char* const bytes = static_cast<char*>(memory.GetBuffer());
        std::memset(bytes, 1, memory.GetSize());
        const bool hasFio = RunFio(Work{file, 65536, 1, true}) > 0;
        if (!hasFio) {
            std::printf("fio does not run here; its rows are missing.\n");
        }
        constexpr std::uint32_t kDepths[] = {1, 32, 128};
        for (const std::uint32_t depth : kDepths) {
            CompareSpeed(Work{file, 65536, depth, true}, bytes, hasFio);
            CompareSpeed(Work{file, 1 << 20, depth, false}, bytes, hasFio);
        }
        CompareCost(Work{file, 65536, 32, true}, bytes);
        CompareCost(Work{file, 1 << 20, 32, false}, bytes);
    }
    ORL::Foundation::Terminate();
    return Bench::Finish();
}
