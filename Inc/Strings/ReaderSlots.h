// The shared side of a lock: readers enter concurrently, each in its own slot, and a writer waits until all have left.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ORL {

/// Steps that the model checks omit one by one, to prove that they detect each omission.
enum class ReaderSlotStep {
    kReaderTakesSlotFirst, // a reader claims its slot before it tests whether readers are excluded
    kWriterExcludesFirst,  // a writer excludes readers before it tests the slots
};

/// The primitives of the reader slots in the library; a model check provides its own policy.
struct SystemReaderSlots
{
    static constexpr bool Executes(ReaderSlotStep) { return true; }

    template <class T>
    using Atomic = std::atomic<T>;

    static constexpr std::size_t kSlots = 64;
    static constexpr std::size_t kTries = 4; // number of slots that a reader tries

    /// Returns the first slot that the calling thread tries. Thread stacks are far apart, so the address of a local
    /// variable distinguishes threads without a call.
    static std::size_t FirstSlot()
    {
        const char here = 0;
        const std::uint64_t region = reinterpret_cast<std::uintptr_t>(&here) >> 16;
        return static_cast<std::size_t>((region * 0x9E3779B97F4A7C15u) >> 58);
    }
    static_assert(kSlots == 64, "the six highest bits name a place");

    /// Waits a moment for a reader. inTurn is the number of waits for this reader so far.
    static void BackOff(int inTurn);
};

/// In a plain reader-writer lock all readers write the same word; even with two threads that dominates the cost of a
/// lookup. Here a reader writes, with one atomic instruction, to a cache line that threads rarely share.
///
/// Writers are serialised by a separate lock: only one thread at a time may use WriterAccess. A reader must not acquire
/// that lock.
template <class Policy>
class ReaderSlotsOf
{
    template <class T>
    using Atomic = typename Policy::template Atomic<T>;
    using SlotWord = Atomic<std::uint32_t>;

public:
    ReaderSlotsOf() = default;
    ReaderSlotsOf(const ReaderSlotsOf&) = delete;
    ReaderSlotsOf& operator=(const ReaderSlotsOf&) = delete;

    /// While it exists and IsGranted() is true, WriterAccess waits. ReaderAccess never waits: if a writer is active or
    /// all slots tried are taken, IsGranted() is false and the caller acquires the writers' lock instead.
    class ReaderAccess
    {
    public:
        explicit ReaderAccess(ReaderSlotsOf& ioSlots) : mSlot(ioSlots.Enter()) {}
        ~ReaderAccess()
        {
            if (mSlot != nullptr) {
                mSlot->store(0, std::memory_order_release);
            }
        }
        ReaderAccess(const ReaderAccess&) = delete;
        ReaderAccess& operator=(const ReaderAccess&) = delete;

        bool IsGranted() const { return mSlot != nullptr; }

    private:
        SlotWord* const mSlot;
    };

    /// Excludes readers while it exists. The constructor waits for current readers to leave.
    class WriterAccess
    {
    public:
        explicit WriterAccess(ReaderSlotsOf& ioSlots) : mReaders(ioSlots) { mReaders.AcquireWriter(); }
        ~WriterAccess() { mReaders.mHasWriter.store(false, std::memory_order_release); }
        WriterAccess(const WriterAccess&) = delete;
        WriterAccess& operator=(const WriterAccess&) = delete;

    private:
        ReaderSlotsOf& mReaders;
    };

    /// Same as WriterAccess, but never waits: IsGranted() is false if there is a reader.
    class TryWriterAccess
    {
    public:
        explicit TryWriterAccess(ReaderSlotsOf& ioSlots) : mReaders(ioSlots), mHasWriter(ioSlots.TryAcquireWriter()) {}
        ~TryWriterAccess()
        {
            if (mHasWriter) {
                mReaders.mHasWriter.store(false, std::memory_order_release);
            }
        }
        TryWriterAccess(const TryWriterAccess&) = delete;
        TryWriterAccess& operator=(const TryWriterAccess&) = delete;

        bool IsGranted() const { return mHasWriter; }

    private:
        ReaderSlotsOf& mReaders;
        const bool mHasWriter;
    };

private:
    static constexpr std::size_t kLine = 64;

    struct alignas(kLine) Slot
    {
        SlotWord mIsTaken{0};
    };

    // Both sides write first and then test, so either the reader sees the exclusion or the writer sees that the slot
    // is taken.
    SlotWord* Enter()
    {
        const bool hadWriter = !Policy::Executes(ReaderSlotStep::kReaderTakesSlotFirst) && mHasWriter.load();
        const std::size_t first = Policy::FirstSlot();
        for (std::size_t i = 0; i < Policy::kTries; ++i) {
            SlotWord& slot = mSlots[(first + i) % Policy::kSlots].mIsTaken;
            if (slot.exchange(1) != 0) {
                continue;
            }
            if (!(Policy::Executes(ReaderSlotStep::kReaderTakesSlotFirst) ? mHasWriter.load() : hadWriter)) {
                return &slot;
            }
            slot.store(0, std::memory_order_release);
            return nullptr;
        }
        return nullptr;
    }

    void AcquireWriter()
    {
        if (Policy::Executes(ReaderSlotStep::kWriterExcludesFirst)) {
            mHasWriter.store(true);
        }
        for (Slot& slot : mSlots) {
            for (int turn = 0; slot.mIsTaken.load() != 0; ++turn) {
                Policy::BackOff(turn);
            }
        }
        if (!Policy::Executes(ReaderSlotStep::kWriterExcludesFirst)) {
            mHasWriter.store(true);
        }
    }

    bool TryAcquireWriter()
    {
        mHasWriter.store(true);
        for (Slot& slot : mSlots) {
            if (slot.mIsTaken.load() != 0) {
                mHasWriter.store(false, std::memory_order_release);
                return false;
            }
        }
        return true;
    }

    Slot mSlots[Policy::kSlots];
    alignas(kLine) Atomic<bool> mHasWriter{false};
};

using ReaderSlots = ReaderSlotsOf<SystemReaderSlots>;

} // namespace ORL
