// Fails each allocation in Foundation::Initialize, and checks what a host can do afterwards.
#include "MemoryFaults.h"

#include <ORLFoundation.h>

#include <CheckRecorder.h>
#include <Foundation/CountedLifecycle.h>

#include <exception>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

/// While an instance exists, contract errors throw a TVXException.
class ThrowingHost
{
public:
    ThrowingHost() : mOld(tvxcore::config::InstallErrorManager(&mManager)) {}
    ~ThrowingHost() { tvxcore::config::InstallErrorManager(mOld); }

private:
    const CheckRecorder mQuiet;
    TVXErrorManager mManager;
    tvxcore::config::ErrorManager* const mOld;
};

/// mRefused counts the failed requests; 0 means that the start made too few requests to reach the failing one.
struct Attempt
{
    bool mHasFailed = false;
    unsigned mRefused = 0;
};

Attempt StartWithFaults(FaultyAllocator inAllocator, unsigned inNumber)
{
    Attempt attempt;
    const MemoryFaults faults(inAllocator, inNumber, false);
    try {
        Foundation::Initialize();
    } catch (const std::exception&) {
        attempt.mHasFailed = true;
    }
    attempt.mRefused = faults.Refused();
    return attempt;
}

bool ThreadHasARecord()
{
    return ThreadManager::GetCurrentThreadInfo()->GetThreadName() != ConstString("Unnamed Thread");
}

// Returns the message of the exception that a second start throws, or an empty string.
std::string SecondStartThrows()
{
    try {
        Foundation::Initialize();
    } catch (const TVXException& refusal) {
        return refusal.what();
    }
    return "";
}

} // namespace

TEST(LifecycleFaults, StartThatFailsAtAnyPlace_CanBeMadeAgainAfterTheRegistrationIsTakenBack)
{
    const ThrowingHost host;
    unsigned failedInTheLastStep = 0;
    for (const FaultyAllocator allocator : kFaultyAllocators) {
        Attempt attempt{false, 1};
        for (unsigned number = 1; attempt.mRefused != 0; ++number) {
            SCOPED_TRACE(number);
            attempt = StartWithFaults(allocator, number);
            if (attempt.mHasFailed) {
                EXPECT_EQ(0, FoundationLifecycle().mCount);
                failedInTheLastStep += MemoryRecycler::Instance() ? 1 : 0;
                if (ThreadHasARecord()) { // still registered, so a second start throws
                    EXPECT_EQ("\"An input contract violation has occurred!\" [ID 25, Package 105, Level 0]",
                              SecondStartThrows());
                }
                ThreadManager::UnregisterMainThread();
                Foundation::Initialize();
            }
            EXPECT_EQ(1, FoundationLifecycle().mCount);
            EXPECT_TRUE(MemoryRecycler::Instance());
            EXPECT_TRUE(ThreadHasARecord());
            Foundation::Terminate();
            EXPECT_FALSE(MemoryRecycler::Instance());
        }
    }
    EXPECT_GE(failedInTheLastStep, 1u);
}
