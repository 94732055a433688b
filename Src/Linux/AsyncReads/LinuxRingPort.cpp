#include "LinuxCompletionPort.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"

#include <Platform/Mutex.h>
#include <atomic>
#include <cerrno>
#include <liburing.h>
#include <poll.h>
#include <sys/eventfd.h>

namespace ORL {
namespace Linux {

using namespace AsyncFiles::Platform;

namespace {

// The submission queue has space for the batched reads, a packet, and entries that the kernel refused. The completion
// queue has space for every read that can be in flight, and an empty packet.
constexpr unsigned kSubmissions = 4 * kMaxBatchedReads;
constexpr unsigned kCompletions = 4096;

// The user data of a submission that the kernel refused.
Overlapped sWithdrawn{};

// The user data of the alarm, an eventfd that the ring polls while it is open. Signalling it wakes a thread that waits
// for the ring, without another submission to the kernel.
Overlapped sAlarm{};

// A read passes from the thread that starts it to the thread that completes it only through the kernel, which the C++
// memory model does not cover. The hand-over therefore also uses an atomic variable. While the read is in progress, its
// Overlapped stores the whole request; mEvent, otherwise unused, stores the size.
void Publish(const ReadRequest& inRequest)
{
    Overlapped& overlapped = *inRequest.mOverlapped;
    overlapped.mSystemWord2 = reinterpret_cast<std::uintptr_t>(inRequest.mBuffer);
    overlapped.mEvent = reinterpret_cast<void*>(std::uintptr_t{inRequest.mSize});
    __atomic_store_n(&overlapped.mSystemWord1, reinterpret_cast<std::uintptr_t>(inRequest.mFile), __ATOMIC_RELEASE);
}

ReadRequest Consume(Overlapped& ioOverlapped)
{
    auto* const file = reinterpret_cast<AsyncFile*>(__atomic_load_n(&ioOverlapped.mSystemWord1, __ATOMIC_ACQUIRE));
    const auto size = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(ioOverlapped.mEvent));
    ioOverlapped.mEvent = nullptr;
    return ReadRequest{file, reinterpret_cast<void*>(ioOverlapped.mSystemWord2), size, &ioOverlapped};
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

    /// Opens the ring. Returns 0 or an errno.
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
        // A kernel with this feature also has the plain read operation.
        if ((parameters.features & IORING_FEAT_RW_CUR_POS) == 0) {
            return ENOSYS;
        }
        mAlarm = Descriptor(System().mMakeEvent(0, EFD_CLOEXEC | EFD_NONBLOCK));
        SetAlarm();
        return 0;
    }

    void Close() override
    {
        mIsClosed.store(true);
        // A packet wakes a thread that waits in Get; if there is no space for one, the alarm wakes it.
        if (!PostEmptyPacket() && mAlarm) {
            System().mRaiseEvent(mAlarm.Get());
        }
    }

    SystemError Start(const ReadRequest& inRequest) override
    {
        const MutexLock lock(mSubmitting);
        io_uring_sqe* const entry = TakeEntry();
        if (entry == nullptr) {
            return SystemErrors::kErrorBusy;
        }
        ::io_uring_prep_read(entry, inRequest.mFile->File(), inRequest.mBuffer, inRequest.mSize,
                             PositionOf(*inRequest.mOverlapped));
        ::io_uring_sqe_set_data(entry, inRequest.mOverlapped);
        Publish(inRequest); // last: the thread that completes the read may close the file
        return SystemErrors::kErrorIoPending;
    }

    std::size_t Submit(SystemError& outError) override
    {
        const MutexLock lock(mSubmitting);
        const int error = Submit();
        outError = SystemErrorFromErrno(error);
        return error == 0 ? 0 : Withdraw([](void* inData) { return inData != nullptr && inData != &sAlarm; });
    }

    bool PostEmptyPacket() override
    {
        const MutexLock lock(mSubmitting);
        io_uring_sqe* const entry = TakeEntry();
        if (entry == nullptr) {
            return false;
        }
        ::io_uring_prep_nop(entry);
        ::io_uring_sqe_set_data(entry, nullptr);
        if (Submit() == 0) {
            return true;
        }
        Withdraw([](void* inData) { return inData == nullptr; });
        return false;
    }

    bool Get(Completion& outCompletion) override
    {
        outCompletion = Completion{};
        Retries retries;
        for (;;) {
            io_uring_cqe* entry = nullptr;
            const int error = System().mUringWaitCqe(&mRing, &entry);
            if (error != 0 && retries.IsWorthwhile(-error)) {
                continue;
            }
            if (error != 0 || mIsClosed.load()) {
                return false;
            }
            auto* const overlapped = static_cast<Overlapped*>(::io_uring_cqe_get_data(entry));
            const int returned = entry->res;
            ::io_uring_cqe_seen(&mRing, entry);
            if (overlapped == nullptr) {
                return true;
            }
            // The kernel cancels the alarm when the thread that submitted it exits.
            if (overlapped == &sAlarm && returned == -ECANCELED) {
                SetAlarm();
            }
            if (overlapped != &sAlarm && overlapped != &sWithdrawn) {
                return Complete(Consume(*overlapped), returned, outCompletion);
            }
        }
    }

    const char* Describe() const override { return "io_uring"; }

private:
    // Repeats the read on this thread if the kernel aborted it because of a signal or a temporary shortage.
    static bool Complete(const ReadRequest& inRequest, int inReturned, Completion& outCompletion)
    {
        const bool isGivenUp = inReturned < 0 && Retries().IsWorthwhile(-inReturned);
        return CompleteRead(*inRequest.mFile, *inRequest.mOverlapped, isGivenUp ? ReadNow(inRequest) : inReturned,
                            outCompletion);
    }

    // Returns null if the queue is full of entries that the kernel refuses.
    io_uring_sqe* TakeEntry() TVXCORE_REQUIRES(mSubmitting)
    {
        io_uring_sqe* const entry = ::io_uring_get_sqe(&mRing);
        return entry != nullptr || Submit() != 0 ? entry : ::io_uring_get_sqe(&mRing);
    }

    // If the alarm cannot be set, the only loss is that a close without a packet cannot wake the waiting thread.
    void SetAlarm()
    {
        const MutexLock lock(mSubmitting);
        io_uring_sqe* const entry = mAlarm ? ::io_uring_get_sqe(&mRing) : nullptr;
        if (entry == nullptr) {
            return;
        }
        ::io_uring_prep_poll_add(entry, mAlarm.Get(), POLLIN);
        ::io_uring_sqe_set_data(entry, &sAlarm);
        System().mUringArm(&mRing);
        if (::io_uring_sq_ready(&mRing) != 0) {
            Withdraw([](void* inData) { return inData == &sAlarm; });
        }
    }

    // Submits the queued entries. Returns 0, or the errno with which the kernel refused the rest.
    int Submit() TVXCORE_REQUIRES(mSubmitting)
    {
        Retries retries;
        for (;;) {
            const int taken = System().mUringSubmit(&mRing);
            if (::io_uring_sq_ready(&mRing) == 0) {
                return 0;
            }
            const int error = taken < 0 ? -taken : EAGAIN;
            if (!retries.IsWorthwhile(error)) {
                return error;
            }
        }
    }

    // Withdraws the entries that inIsWanted selects. An entry that the kernel refused cannot be removed, so it becomes
    // a no-op, which is submitted with a later entry. Returns the number of withdrawn entries.
    template <class Wanted>
    std::size_t Withdraw(const Wanted& inIsWanted) TVXCORE_REQUIRES(mSubmitting)
    {
        std::size_t count = 0;
        for (unsigned i = __atomic_load_n(mRing.sq.khead, __ATOMIC_ACQUIRE); i != mRing.sq.sqe_tail; ++i) {
            io_uring_sqe& entry = mRing.sq.sqes[i & mRing.sq.ring_mask];
            void* const data = reinterpret_cast<void*>(entry.user_data);
            if (data != &sWithdrawn && inIsWanted(data)) {
                ::io_uring_prep_nop(&entry);
                ::io_uring_sqe_set_data(&entry, &sWithdrawn);
                ++count;
            }
        }
        return count;
    }

    io_uring mRing{};
    bool mIsOpen = false;
    Descriptor mAlarm; // closed after the ring
    std::atomic<bool> mIsClosed{false};
    Mutex mSubmitting; // held while the submission side of the ring is used; only one thread gets completions
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
