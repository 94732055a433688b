// Fails, shortens or delays the library's system calls.
#pragma once

#include <Linux/Calls/SystemCalls.h>

#include <functional>
#include <memory>

namespace ORLTest {

/// During its lifetime, intercepts the library's system calls. Only one instance may exist at a time. Thread-safe.
///
///   FaultySystemCalls calls;
///   calls.Fail(FaultySystemCalls::kPRead, 3, EIO);        // the third read from now fails
///   calls.Shorten(FaultySystemCalls::kPRead, 1, 100);     // the next read requests 100 bytes fewer
///   calls.Before(FaultySystemCalls::kOpen, 1, [&] { go.wait(); });   // the next open is held until go
class FaultySystemCalls
{
public:
    enum Call {
#define ORL_NAME_CALL(name, failure, result, parameters, arguments, size) k##name,
        ORL_LINUX_SYSTEM_CALLS(ORL_NAME_CALL)
#undef ORL_NAME_CALL
            kCallCount,
        kAny = kCallCount // calls of every kind, counted together
    };

    static constexpr unsigned kForEver = ~0u;

    FaultySystemCalls();
    ~FaultySystemCalls();
    FaultySystemCalls(const FaultySystemCalls&) = delete;
    FaultySystemCalls& operator=(const FaultySystemCalls&) = delete;

    /// inNumber counts the calls of that kind from now on; 1 is the next. inCount calls in a row fail. A failing call
    /// does nothing, except that a failing close has closed the descriptor, as on Linux.
    void Fail(Call inCall, unsigned inNumber, int inErrno, unsigned inCount = 1);

    /// Reduces the requested size by inBytes, but to at least 1 byte.
    void Shorten(Call inCall, unsigned inNumber, std::size_t inBytes);

    /// Runs inAction before the call, on its thread. Use Before to delay a call until an event, never for a fixed time.
    void Before(Call inCall, unsigned inNumber, std::function<void()> inAction);

    /// Returns the number of calls of that kind so far.
    unsigned Count(Call inCall) const;

    /// Returns the table of calls that run below the faults, initially those of the kernel. A test may replace entries
    /// before the first call.
    ORL::Linux::SystemCalls& Underlying() noexcept;

    class State;

private:
    const ORL::Linux::SystemCalls* mEarlier;
    std::shared_ptr<State> mState;
};

} // namespace ORLTest
