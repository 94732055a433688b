// The primitives that executors use in their channels. The model check instantiates the same template with a policy in
// which the checker controls every operation.
#pragma once

#include <CorePlatform/WordWait.h>
#include <Executors/CoreMutex.h>
#include <Executors/WorkChannel.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace threads {

struct SystemPolicy
{
    static constexpr bool Executes(ChannelStep) { return true; }

    /// Size of a cache line in bytes.
    static constexpr std::size_t kLine = 64;

    /// Words and pointers: a load acquires, a store releases, other operations are sequentially consistent.
    template <class T>
    using Atomic = std::atomic<T>;
    template <class T>
    static T Load(const Atomic<T>& inTarget)
    {
        return inTarget.load(std::memory_order_acquire);
    }
    template <class T>
    static void Store(Atomic<T>& outTarget, T inValue)
    {
        outTarget.store(inValue, std::memory_order_release);
    }
    template <class T>
    static bool CompareAndSet(Atomic<T>& ioTarget, T inExpected, T inNew)
    {
        return ioTarget.compare_exchange_strong(inExpected, inNew);
    }
    static std::uint32_t Add(Atomic<std::uint32_t>& ioTarget, std::uint32_t inValue)
    {
        return ioTarget.fetch_add(inValue);
    }
    static std::uint32_t Subtract(Atomic<std::uint32_t>& ioTarget, std::uint32_t inValue)
    {
        return ioTarget.fetch_sub(inValue);
    }

    /// A value that a lock guards.
    template <class T>
    using Guarded = T;
    template <class T>
    static T& Reach(T& ioValue)
    {
        return ioValue;
    }

    using Mutex = CoreMutex;
    using MutexLock = CoreMutexLock;

    static void SleepOn(Atomic<std::uint32_t>& ioWord, std::uint32_t inExpected)
    {
        Platform::WaitOnWord_Impl(ioWord, inExpected, Platform::kEndless);
    }
    static void WakeOne(Atomic<std::uint32_t>& ioWord) { Platform::WakeOneOnWord_Impl(ioWord); }
    static void WakeAll(Atomic<std::uint32_t>& ioWord) { Platform::WakeAllOnWord_Impl(ioWord); }

    /// Executes one iteration of a spin. ORLFoundation has its own such function: sharing this one would need a public
    /// header, and hosts do not spin.
    static void Pause() { __builtin_ia32_pause(); }
};

} // namespace threads
} // namespace tvxcore
