#include <AllocationFaults.h>

#include <SmallBlocks/Ledger.h>
#include <tvxcore/Executor.h>

#include <atomic>

namespace tvxcore {
namespace utility {
namespace AllocationFaults {

namespace {

std::atomic<bool> sIsArmed{false};
std::atomic<bool> sHasMetrics{true};
std::atomic<std::uint64_t> sAsked{0};
std::atomic<std::uint64_t> sRefused{0};
// Written before sIsArmed is set, and read only after sIsArmed has been read as true.
Plan sPlan;
unsigned long sThread = 0;

} // namespace

Scope::Scope(const Plan& inPlan) noexcept
{
    sPlan = inPlan;
    sThread = threads::GetCurrentThreadID();
    sAsked.store(0);
    sRefused.store(0);
    sIsArmed.store(true);
    if (inPlan.mKind == kBlocks) {
        SmallBlocks::SetFastAllocation(SmallBlocks::FastAllocation::kOff);
    }
}

Scope::~Scope()
{
    sIsArmed.store(false);
    SmallBlocks::SetFastAllocation(SmallBlocks::FastAllocation::kOn);
}

std::uint64_t Scope::Asked() const noexcept
{
    return sAsked.load();
}

std::uint64_t Scope::Refused() const noexcept
{
    return sRefused.load();
}

NoMetricsScope::NoMetricsScope() noexcept
{
    sHasMetrics.store(false);
}

NoMetricsScope::~NoMetricsScope()
{
    sHasMetrics.store(true);
}

bool Refuses(AllocationKind inKind) noexcept
{
    if (!sIsArmed.load(std::memory_order_acquire) || sPlan.mKind != inKind
        || (sPlan.mOfThisThreadOnly && threads::GetCurrentThreadID() != sThread)) {
        return false;
    }
    const std::uint64_t number = sAsked.fetch_add(1) + 1;
    if (number < sPlan.mFirst || number - sPlan.mFirst >= sPlan.mFailureCount) {
        return false;
    }
    sRefused.fetch_add(1);
    return true;
}

bool HasMetrics() noexcept
{
    return sHasMetrics.load(std::memory_order_relaxed);
}

} // namespace AllocationFaults
} // namespace utility
} // namespace tvxcore
