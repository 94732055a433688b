// Floor: Strings
// The shared side of a guard: many threads read at once, each in a place of its own, and a writer waits until all have left.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ORL {

/// A lock costs each reader a word that the other processors write too; with two threads that word is most of a lookup. A
/// visit writes a memory line that the thread rarely shares, and takes one locked instruction.
///
/// The writer has a lock of its own: ShutOut is for one thread at a time. A visitor must not ask for that lock.
class SharedVisits
{
public:
    SharedVisits() = default;
    SharedVisits(const SharedVisits&) = delete;
    SharedVisits& operator=(const SharedVisits&) = delete;

    /// While it lives and IsIn() is true, no ShutOut begins its work. It never waits: where a writer works, or all the
    /// places it looks at are taken, it is not in, and its owner takes the writer's lock.
    class Visit
    {
    public:
        explicit Visit(SharedVisits& ioVisits) : mPlace(ioVisits.Enter()) {}
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
        std::atomic<std::uint32_t>* const mPlace;
    };

    /// While it lives nobody visits. It waits for those who do.
    class ShutOut
    {
    public:
        explicit ShutOut(SharedVisits& ioVisits) : mVisits(ioVisits) { mVisits.Shut(); }
        ~ShutOut() { mVisits.mIsShut.store(false, std::memory_order_release); }
        ShutOut(const ShutOut&) = delete;
        ShutOut& operator=(const ShutOut&) = delete;

    private:
        SharedVisits& mVisits;
    };

    /// The same for whoever must not wait: where somebody visits, it is not shut.
    class TryShutOut
    {
    public:
        explicit TryShutOut(SharedVisits& ioVisits) : mVisits(ioVisits), mIsShut(ioVisits.TryShut()) {}
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
        SharedVisits& mVisits;
        const bool mIsShut;
    };

private:
    using PlaceWord = std::atomic<std::uint32_t>;

    static constexpr std::size_t kPlaces = 64;
    static constexpr std::size_t kTries = 4;
    static constexpr std::size_t kLine = 64;

    struct alignas(kLine) Place
    {
        PlaceWord mIsTaken{0};
    };

    // Threads have stacks that lie far from each other: the address of a variable tells them apart without a call.
    static std::size_t FirstPlace()
    {
        const char here = 0;
        const std::uint64_t region = reinterpret_cast<std::uintptr_t>(&here) >> 16;
        return static_cast<std::size_t>((region * 0x9E3779B97F4A7C15u) >> 58);
    }
    static_assert(kPlaces == 64, "the six highest bits name a place");

    // Either the visitor sees that it is shut, or the writer sees the place taken: both write first and look second.
    PlaceWord* Enter()
    {
        const std::size_t first = FirstPlace();
        for (std::size_t i = 0; i < kTries; ++i) {
            PlaceWord& place = mPlaces[(first + i) % kPlaces].mIsTaken;
            if (place.exchange(1) != 0) {
                continue;
            }
            if (!mIsShut.load()) {
                return &place;
            }
            place.store(0, std::memory_order_release);
            return nullptr;
        }
        return nullptr;
    }

    void Shut();
    bool TryShut();

    Place mPlaces[kPlaces];
    alignas(kLine) std::atomic<bool> mIsShut{false};
};

} // namespace ORL
