// Floor: Strings
// The shared side of a guard: many threads read at once, each in a place of its own, and a writer waits until all have left.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ORL {

/// The steps that the model checks leave out one by one, to prove that they would notice.
enum class VisitStep {
    kTakesPlaceFirst, // a visitor takes its place before it looks whether it is shut
    kShutsFirst,      // a writer shuts before it looks at the places
};

/// What the visits of the library are made of; a model check brings a policy of its own.
struct SystemVisits
{
    static constexpr bool Keeps(VisitStep) { return true; }

    template <class T>
    using Atomic = std::atomic<T>;

    static constexpr std::size_t kPlaces = 64;
    static constexpr std::size_t kTries = 4; // places that a visitor looks at

    /// Where the calling thread begins to look. Threads have stacks that lie far from each other: the address of a variable
    /// tells them apart without a call.
    static std::size_t FirstPlace()
    {
        const char here = 0;
        const std::uint64_t region = reinterpret_cast<std::uintptr_t>(&here) >> 16;
        return static_cast<std::size_t>((region * 0x9E3779B97F4A7C15u) >> 58);
    }
    static_assert(kPlaces == 64, "the six highest bits name a place");

    /// The wait of a writer for a visitor: how many times it has waited for this one.
    static void WaitForAMoment(int inTurn);
};

/// A lock costs each reader a word that the other processors write too; with two threads that word is most of a lookup. A
/// visit writes a cache line that the thread rarely shares, and takes one locked instruction.
///
/// The writer has a lock of its own: ShutOut is for one thread at a time. A visitor must not ask for that lock.
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

    /// While it lives and IsIn() is true, no ShutOut begins its work. It never waits: where a writer works, or all the
    /// places it looks at are taken, it is not in, and its owner takes the writer's lock.
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

    /// While it lives nobody visits. It waits for those who do.
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

    /// The same for whoever must not wait: where somebody visits, it is not shut.
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

    // Either the visitor sees that it is shut, or the writer sees the place taken: both write first and look second.
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
