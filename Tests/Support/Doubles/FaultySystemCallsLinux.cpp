#include <FaultySystemCallsLinux.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <utility>
#include <vector>

namespace ORLTest {

using ORL::Linux::SystemCalls;

class FaultySystemCalls::State
{
public:
    struct Plan
    {
        Call mCall;
        unsigned mFirst;
        unsigned mCount;
        int mErrno;
        std::size_t mShortenBy;
        std::function<void()> mAction;
    };

    /// Counts one call and applies the plans that match it. Returns the errno that the call fails with, or 0.
    int Enter(Call inCall, std::size_t& ioSize)
    {
        int error = 0;
        for (const Plan& plan : CountAndMatch(inCall)) {
            if (plan.mAction) {
                plan.mAction();
            }
            ioSize -= std::min(plan.mShortenBy, ioSize - std::min<std::size_t>(ioSize, 1));
            error = plan.mErrno != 0 ? plan.mErrno : error;
        }
        return error;
    }

    void Add(Call inCall, unsigned inNumber, unsigned inCount, int inErrno, std::size_t inShortenBy,
             std::function<void()> inAction)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mPlans.push_back({inCall, mCounts[inCall] + inNumber, inCount, inErrno, inShortenBy, std::move(inAction)});
    }

    unsigned Count(Call inCall) const
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mCounts[inCall];
    }

    SystemCalls mUnderlying = ORL::Linux::kSystem;

private:
    // Counts the call and returns the plans that match. The caller runs their actions unlocked, because one may wait.
    std::vector<Plan> CountAndMatch(Call inCall)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        ++mCounts[inCall];
        ++mCounts[kAny];
        std::vector<Plan> fitting;
        for (const Plan& plan : mPlans) {
            const unsigned number = mCounts[plan.mCall];
            if ((plan.mCall == inCall || plan.mCall == kAny) && number >= plan.mFirst
                && number - plan.mFirst < plan.mCount) {
                fitting.push_back(plan);
            }
        }
        return fitting;
    }

    mutable std::mutex mMutex;
    unsigned mCounts[kCallCount + 1] = {}; // the last element counts all calls
    std::vector<Plan> mPlans;
};

namespace {

// A thread may still be inside a call when the test ends. The thread keeps the state that it loaded; a thread that
// loads null calls the kernel.
std::shared_ptr<FaultySystemCalls::State> sState;

template <class Result>
Result FailErrno(int inErrno)
{
    errno = inErrno;
    return -1;
}

template <class Result>
Result FailNull(int inErrno)
{
    errno = inErrno;
    return nullptr;
}

template <class Result>
Result FailNumber(int inErrno)
{
    return inErrno;
}

template <class Result>
Result FailNegative(int inErrno)
{
    return -inErrno;
}

template <class Result>
Result FailNothing(int)
{
}

#define ORL_FAULTY_CALL(name, failure, result, parameters, arguments, size)                                            \
  result Faulty##name parameters                                                                                       \
  {                                                                                                                    \
    [[maybe_unused]] std::size_t sNoSize = 0;                                                                          \
    const std::shared_ptr<FaultySystemCalls::State> state = std::atomic_load(&sState);                                 \
    if (state == nullptr) {                                                                                            \
      return ORL::Linux::kSystem.m##name arguments;                                                                    \
    }                                                                                                                  \
    const int error = state->Enter(FaultySystemCalls::k##name, size);                                                  \
    if constexpr (FaultySystemCalls::k##name == FaultySystemCalls::kClose) {                                           \
      if (error != 0) {                                                                                                \
        state->mUnderlying.m##name arguments;                                                                          \
      }                                                                                                                \
    }                                                                                                                  \
    return error != 0 ? Fail##failure<result>(error) : state->mUnderlying.m##name arguments;                           \
  }
ORL_LINUX_SYSTEM_CALLS(ORL_FAULTY_CALL)
#undef ORL_FAULTY_CALL

constexpr SystemCalls kFaulty = {
#define ORL_FAULTY_ENTRY(name, failure, result, parameters, arguments, size) &Faulty##name,
    ORL_LINUX_SYSTEM_CALLS(ORL_FAULTY_ENTRY)
#undef ORL_FAULTY_ENTRY
};

} // namespace

FaultySystemCalls::FaultySystemCalls() : mState(std::make_shared<State>())
{
    std::atomic_store(&sState, mState);
    mEarlier = ORL::Linux::InstallSystemCalls(&kFaulty);
}

FaultySystemCalls::~FaultySystemCalls()
{
    ORL::Linux::InstallSystemCalls(mEarlier);
    std::atomic_store(&sState, std::shared_ptr<State>());
}

void FaultySystemCalls::Fail(Call inCall, unsigned inNumber, int inErrno, unsigned inCount)
{
    mState->Add(inCall, inNumber, inCount, inErrno, 0, {});
}

void FaultySystemCalls::Shorten(Call inCall, unsigned inNumber, std::size_t inBytes)
{
    mState->Add(inCall, inNumber, 1, 0, inBytes, {});
}

void FaultySystemCalls::Before(Call inCall, unsigned inNumber, std::function<void()> inAction)
{
    mState->Add(inCall, inNumber, 1, 0, 0, std::move(inAction));
}

unsigned FaultySystemCalls::Count(Call inCall) const
{
    return mState->Count(inCall);
}

SystemCalls& FaultySystemCalls::Underlying() noexcept
{
    return mState->mUnderlying;
}

} // namespace ORLTest
