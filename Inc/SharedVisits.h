// Floor: Strings
// The shared side of a lock: readers enter concurrently, each in its own slot, and a writer waits until all have left.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ORL {

/// Steps that the model checks omit one by one, to prove that they detect each omission.
enum class VisitStep {
    kTakesPlaceFirst, // a visitor claims its slot before it tests whether visitors are excluded
    kShutsFirst,      // a writer excludes visitors before it tests the slots
};

/// The primitives of visits in the library; a model check provides its own policy.
struct SystemVisits
{
    static constexpr bool Keeps(VisitStep) { return true; }

    template <class T>
    using Atomic = std::atomic<T>;

    static constexpr std::size_t kPlaces = 64;
    static constexpr std::size_t kTries = 4; // slots that a visitor tries

    /// Returns the first slot that the calling thread tries. Thread stacks are far apart, so the address of a local
    /// variable distinguishes threads without a call.
    static std::size_t FirstPlace()
    {
        const char here = 0;
        const std::uint64_t region = reinterpret_cast<std::uintptr_t>(&here) >> 16;
        return static_cast<std::size_t>((region * 0x9E3779B97F4A7C15u) >> 58);
    }
    static_assert(kPlaces == 64, "the six highest bits name a place");

    /// Waits a moment for a visitor. inTurn is the number of waits for this visitor so far.
    static void WaitForAMoment(int inTurn);
};

/// A reader-writer lock makes each reader write a word that other processors write too; with two threads that dominates
/// the cost of a lookup. A visit writes a cache line that threads rarely share, with one atomic instruction.
///
/// Writers are serialised by a separate lock: only one thread at a time may use ShutOut. A visitor must not acquire
/// that lock.
template <class Policy>
class SharedVisitsOf
{
    template <class T>
    using Atomic = typename Policy::template Atomic<T>;
    using PlaceWord = Atomic<std::uint32_t>;

public:
    SharedVisitsOf() = default;
    SharedVisitsOf(const SharedVisitsOf&) = delete;
    SharedVisitsOf& operator=(const SharedVisitsOf&) = delete;

    /// While it exists and IsIn() is true, the constructor of ShutOut waits. Never waits: if a writer is active or all
    /// slots tried are taken, IsIn() is false and the caller takes the writers' lock instead.
    class Visit
    {
    public:
        explicit Visit(SharedVisitsOf& ioVisits) : mPlace(ioVisits.Enter()) {}
        ~Visit()
        {
            if (mPlace != nullptr) {
                mPlace->store(0, std::memory_order_release);
            }
        }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        bool IsIn() const { return mPlace != nullptr; }

    private:
        PlaceWord* const mPlace;
    };

    /// Excludes visitors while it exists. The constructor waits for current visitors to leave.
    class ShutOut
    {
    public:
        explicit ShutOut(SharedVisitsOf& ioVisits) : mVisits(ioVisits) { mVisits.Shut(); }
        ~ShutOut() { mVisits.mIsShut.store(false, std::memory_order_release); }
        ShutOut(const ShutOut&) = delete;
        ShutOut& operator=(const ShutOut&) = delete;

    private:
        SharedVisitsOf& mVisits;
    };

    /// Same as ShutOut, but never waits: IsShut() is false if there is a visitor.
    class TryShutOut
    {
    public:
        explicit TryShutOut(SharedVisitsOf& ioVisits) : mVisits(ioVisits), mIsShut(ioVisits.TryShut()) {}
        ~TryShutOut()
        {
            if (mIsShut) {
                mVisits.mIsShut.store(false, std::memory_order_release);
            }
        }
        TryShutOut(const TryShutOut&) = delete;
        TryShutOut& operator=(const TryShutOut&) = delete;

        bool IsShut() const { return mIsShut; }

    private:
        SharedVisitsOf& mVisits;
        const bool mIsShut;
    };

private:
    static constexpr std::size_t kLine = 64;

    struct alignas(kLine) Place
    {
        PlaceWord mIsTaken{0};
    };

    // Both sides write first and then test, so either the visitor sees the exclusion or the writer sees that the slot
    // is taken.
    PlaceWord* Enter()
    {
        const bool wasShut = !Policy::Keeps(VisitStep::kTakesPlaceFirst) && mIsShut.load();
        const std::size_t first = Policy::FirstPlace();
        for (std::size_t i = 0; i < Policy::kTries; ++i) {
            PlaceWord& place = mPlaces[(first + i) % Policy::kPlaces].mIsTaken;
            if (place.exchange(1) != 0) {
                continue;
            }
            if (!(Policy::Keeps(VisitStep::kTakesPlaceFirst) ? mIsShut.load() : wasShut)) {
                return &place;
            }
            place.store(0, std::memory_order_release);
            return nullptr;
        }
        return nullptr;
    }

    void Shut()
    {
        if (Policy::Keeps(VisitStep::kShutsFirst)) {
            mIsShut.store(true);
        }
        for (Place& place : mPlaces) {
            for (int turn = 0; place.mIsTaken.load() != 0; ++turn) {
                Policy::WaitForAMoment(turn);
            }
        }
        if (!Policy::Keeps(VisitStep::kShutsFirst)) {
            mIsShut.store(true);
        }
    }

    bool TryShut()
    {
        mIsShut.store(true);
        for (Place& place : mPlaces) {
            if (place.mIsTaken.load() != 0) {
                mIsShut.store(false, std::memory_order_release);
                return false;
            }
        }
        return true;
    }

    Place mPlaces[Policy::kPlaces];
    alignas(kLine) Atomic<bool> mIsShut{false};
};

using SharedVisits = SharedVisitsOf<SystemVisits>;

} // namespace ORL
