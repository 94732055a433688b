// The synchronisation policy of the model checks: the checker may switch threads at every operation, and every guarded
// value reports its accesses.
#pragma once

#include <GateOf.h>
#include <Sync/Policy.h>
#include <Threads/AsyncReadRequestBusyList.h>
#include <Threads/AsyncReadRequestPool.h>
#include <Threads/WaitableGateAlgorithm.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>

#include <relacy/relacy.hpp>

// The checker defines these names as macros, which only code written for the checker may use.
#undef new
#undef delete
#undef malloc
#undef calloc
#undef realloc
#undef free
#undef assert
#undef errno
#undef memory_order_relaxed
#undef memory_order_consume
#undef memory_order_acquire
#undef memory_order_release
#undef memory_order_acq_rel
#undef memory_order_seq_cst

// The checker replaces the program's memory functions except the sized delete, which is therefore defined here.
void operator delete(void* inBlock, std::size_t) noexcept
{
    ::operator delete(inBlock);
}

namespace Model {

/// Reports reads and writes of a lock-guarded object to the checker.
class AccessReporter
{
public:
    AccessReporter() { mVariable($) = 0; }
    void Read() const { static_cast<void>(static_cast<int>(mVariable($))); }
    void Write() { mVariable($) = 0; }

private:
    mutable rl::var<int> mVariable;
};

/// A guarded value: a number or a pointer.
template <class T, bool kIsClass = std::is_class_v<T>>
class Guarded
{
public:
    Guarded() : mValue() {}
    explicit Guarded(T inValue) : mValue(inValue) {}
    const T& Value() const { return mValue; }
    T& Value() { return mValue; }

    AccessReporter mAccess;

private:
    T mValue;
};

/// A guarded container. The value can be used directly after its access has been reported.
template <class T>
class Guarded<T, true> : public T
{
public:
    const T& Value() const { return *this; }
    T& Value() { return *this; }

    AccessReporter mAccess;
};

/// A mutex that can be locked through a const reference, like the library's lock.
template <class RelacyMutex>
class Mutex
{
public:
    void Lock() const { mMutex.lock($); }
    void Unlock() const { mMutex.unlock($); }
    RelacyMutex& Get() const { return mMutex; }

private:
    mutable RelacyMutex mMutex;
};

template <class MutexType>
class MutexScope
{
public:
    explicit MutexScope(const MutexType& inMutex) : mMutex(inMutex) { lock(); }
    ~MutexScope()
    {
        if (mHeld) {
            mMutex.Unlock();
        }
    }
    MutexScope(const MutexScope&) = delete;
    MutexScope& operator=(const MutexScope&) = delete;

    void lock()
    {
        mMutex.Lock();
        mHeld = true;
    }
    void unlock()
    {
        mHeld = false;
        mMutex.Unlock();
    }
    const MutexType& GetMutex() const { return mMutex; }

private:
    const MutexType& mMutex;
    bool mHeld = false;
};

/// A condition variable. In the random search the checker also causes spurious wake-ups.
class Condition
{
public:
    Condition() { mCondition.init(true, $); }
    ~Condition() { mCondition.deinit($); }
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    rl::condvar<Condition>& Get() { return mCondition; }

private:
    rl::condvar<Condition> mCondition;
};

/// kSpins: the number of times a thread polls a gate before it sleeps. kLeftOut: the steps that a mutant omits.
template <int kSpins, ORL::Sync::Step... kLeftOut>
struct RelacyPolicy
{
    static constexpr bool Executes(ORL::Sync::Step inStep) { return ((inStep != kLeftOut) && ...); }

    using Flag = rl::atomic<bool>;
    using Word = rl::atomic<std::uint32_t>;
    template <class T>
    static bool CompareAndSet(rl::atomic<T>& ioTarget, T inExpected, T inNew)
    {
        return ioTarget($).compare_exchange_strong(inExpected, inNew, rl::mo_seq_cst);
    }
    static bool CompareAndSet(Word& ioTarget, int inExpected, int inNew)
    {
        return CompareAndSet<std::uint32_t>(ioTarget, static_cast<std::uint32_t>(inExpected),
                                            static_cast<std::uint32_t>(inNew));
    }
    static std::uint32_t Increment(Word& ioTarget) { return ioTarget($).fetch_add(1, rl::mo_seq_cst) + 1; }
    static std::uint32_t Decrement(Word& ioTarget) { return ioTarget($).fetch_sub(1, rl::mo_seq_cst) - 1; }
    static std::uint32_t Exchange(Word& ioTarget, std::uint32_t inNew)
    {
        return ioTarget($).exchange(inNew, rl::mo_seq_cst);
    }
    static std::uint32_t ReadWord(Word& ioTarget) { return ioTarget($).load(rl::mo_seq_cst); }

    template <class T>
    using Guarded = Model::Guarded<T>;
    template <class T>
    static const T& Read(const Guarded<T>& inValue)
    {
        inValue.mAccess.Read();
        return inValue.Value();
    }
    template <class T>
    static T& Write(Guarded<T>& ioValue)
    {
        ioValue.mAccess.Write();
        return ioValue.Value();
    }

    using Mutex = Model::Mutex<rl::mutex>;
    using MutexLock = MutexScope<Mutex>;
    using Condition = Model::Condition;
    static void SleepOn(Condition& ioCondition, MutexLock& ioLock)
    {
        ioCondition.Get().wait(ioLock.GetMutex().Get(), false, $);
    }
    static bool SleepOnFor(Condition& ioCondition, MutexLock& ioLock, int)
    {
        return ioCondition.Get().wait(ioLock.GetMutex().Get(), true, $) != rl::sema_wakeup_reason_timeout;
    }
    static void NotifyAll(Condition& ioCondition) { ioCondition.Get().notify_all($); }

    using Lock = Model::Mutex<rl::recursive_mutex>;
    using LockScope = MutexScope<Lock>;

    template <class T>
    static T* New()
    {
        return new T;
    }
    template <class T>
    static void Delete(T* inObject)
    {
        delete inObject;
    }
    template <class T>
    using StlAllocator = std::allocator<T>;

    static void Pause(int) { rl::yield(1, $); }
    static int SpinTurns() { return kSpins; }
    static int LongSpinTurns() { return kSpins; }
    static void YieldOrSleep(int) { rl::yield(1, $); }
    static void SleepMilliseconds(int) { rl::yield(1, $); }

    using Gate = ORLTest::GateOf<RelacyPolicy>;
    static Gate* RetrieveGate();
    static void ReturnGate(Gate* inGate);
};

template <int kSpins, ORL::Sync::Step... kLeftOut>
typename RelacyPolicy<kSpins, kLeftOut...>::Gate* RelacyPolicy<kSpins, kLeftOut...>::RetrieveGate()
{
    return ORL::Sync::WaitableGatePoolAlgorithm<RelacyPolicy>::RetrieveGate();
}

template <int kSpins, ORL::Sync::Step... kLeftOut>
void RelacyPolicy<kSpins, kLeftOut...>::ReturnGate(Gate* inGate)
{
    ORL::Sync::WaitableGatePoolAlgorithm<RelacyPolicy>::ReturnGate(inGate);
}

} // namespace Model
