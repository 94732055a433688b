#include "LinuxCompletionPort.h"

#include "LinuxErrors.h"
#include "SystemCalls.h"

#include <Platform/Waiting.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <atomic>
#include <cerrno>
#include <liburing.h>
#include <mutex>
#include <new>

namespace ORL {
namespace Linux {

using namespace AsyncFiles::Platform;

namespace {

// One read is handed to the kernel at a time, so few places serve; completions have room for every read that can be in
// flight, and an empty packet.
constexpr unsigned kSubmissions = 64;
constexpr unsigned kCompletions = 4096;

constexpr int kTries = 2000; // a kernel short of memory for a moment is asked again, a millisecond apart

using tvxcore::utility::SmallBlockAllocator;

// What a completion carries back. It is published by one thread and taken up by another with only the kernel between them,
// which the thread sanitizer cannot see: so the hand-over is spelt out.
struct InFlight
{
    ReadOrder mOrder;
    std::atomic<bool> mIsPublished{false};
};

// Completions that are no reads.
constexpr std::uint64_t kEmptyPacket = 0;
constexpr std::uint64_t kWithdrawn = 1;

bool IsPassing(int inError)
{
    return inError == -EINTR || inError == -EAGAIN || inError == -EBUSY || inError == -ENOMEM || inError == -ENOBUFS;
}

class RingPort : public CompletionPort
{
public:
    RingPort() = default;
    RingPort(const RingPort&) = delete;
    RingPort& operator=(const RingPort&) = delete;

    ~RingPort() override
    {
        if (mIsOpen) {
            System().mUringQueueExit(&mRing);
        }
    }

    /// Gives 0 or an errno.
    int Open()
    {
        io_uring_params parameters{};
        parameters.flags = IORING_SETUP_CQSIZE;
        parameters.cq_entries = kCompletions;
        const int refusal = System().mUringQueueInit(kSubmissions, &mRing, &parameters);
        if (refusal != 0) {
            return -refusal;
        }
        mIsOpen = true;
        // A kernel that has this also has the plain read operation.
        return (parameters.features & IORING_FEAT_RW_CUR_POS) != 0 ? 0 : ENOSYS;
    }

    SystemError Start(const ReadOrder& inOrder) override
    {
        void* const memory = SmallBlockAllocator::Allocate(sizeof(InFlight));
        if (memory == nullptr) {
            return SystemErrors::kErrorNotEnoughMemory;
        }
        InFlight* const read = ::new (memory) InFlight{inOrder};
        const std::lock_guard<std::mutex> lock(mSubmitting);
        io_uring_sqe* const entry = ::io_uring_get_sqe(&mRing);
        ::io_uring_prep_read(entry, inOrder.mFile->mDescriptor, inOrder.mBuffer, inOrder.mSize, inOrder.mPosition);
        ::io_uring_sqe_set_data(entry, read);
        read->mIsPublished.store(true, std::memory_order_release);
        const int refusal = Submit(entry);
        if (refusal != 0) {
            Free(read);
            return SystemErrorFromErrno(refusal);
        }
        return SystemErrors::kErrorIoPending;
    }

    bool PostEmptyPacket() override
    {
        const std::lock_guard<std::mutex> lock(mSubmitting);
        io_uring_sqe* const entry = ::io_uring_get_sqe(&mRing);
        ::io_uring_prep_nop(entry);
        ::io_uring_sqe_set_data64(entry, kEmptyPacket);
        return Submit(entry) == 0;
    }

    bool Get(Completion& outCompletion) override
    {
        outCompletion = Completion{};
        for (;;) {
            io_uring_cqe* entry = nullptr;
            const int error = System().mUringWaitCqe(&mRing, &entry);
            if (error == -EINTR || error == -EAGAIN) {
                continue;
            }
            if (error != 0) {
                return false;
            }
            const std::uint64_t data = ::io_uring_cqe_get_data64(entry);
            const int returned = entry->res;
            ::io_uring_cqe_seen(&mRing, entry);
            if (data == kEmptyPacket) {
                return true;
            }
            if (data != kWithdrawn) {
                return Complete(reinterpret_cast<InFlight*>(data), returned, outCompletion);
            }
        }
    }

    const char* Describe() const override { return "io_uring"; }

private:
    static void Free(InFlight* inRead)
    {
        inRead->~InFlight();
        SmallBlockAllocator::Dispose(inRead, sizeof(InFlight));
    }

    static bool Complete(InFlight* inRead, int inReturned, Completion& outCompletion)
    {
        while (!inRead->mIsPublished.load(std::memory_order_acquire)) {
        }
        const bool hasSucceeded = CompleteRead(inRead->mOrder, inReturned, outCompletion);
        Free(inRead);
        return hasSucceeded;
    }

    // Hands the one waiting entry to the kernel: 0, or the errno for which it was withdrawn. The lock is held. An entry that
    // the kernel did not take cannot be removed, but it can be made harmless; it goes with the next one.
    int Submit(io_uring_sqe* ioEntry)
    {
        int result = 0;
        for (int attempt = 0; attempt < kTries; ++attempt) {
            result = System().mUringSubmit(&mRing);
            if (::io_uring_sq_ready(&mRing) == 0) {
                return 0;
            }
            if (result < 0 && !IsPassing(result)) {
                break;
            }
            Sync::Platform::SleepMilliseconds_Impl(result == -EINTR ? 0 : 1);
        }
        ::io_uring_prep_nop(ioEntry);
        ::io_uring_sqe_set_data64(ioEntry, kWithdrawn);
        return result < 0 ? -result : EAGAIN;
    }

    io_uring mRing{};
    bool mIsOpen = false;
    std::mutex mSubmitting; // guards the submission side of the ring; completions belong to the one thread that gets them
};

} // namespace

std::shared_ptr<CompletionPort> MakeRingPort(int& outError)
{
    auto port = std::make_shared<RingPort>();
    outError = port->Open();
    return outError == 0 ? port : nullptr;
}

} // namespace Linux
} // namespace ORL
