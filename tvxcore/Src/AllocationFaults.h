// Memory that runs out where a test wants it to.
//
//   AllocationFaults::Plan plan;
//   plan.mFirst = 3;                                        // the third allocation from now fails, and only it
//   const AllocationFaults::Scope faults(plan);
//   ...
//   EXPECT_EQ(faults.Refused(), 1u);
//
// A sweep runs the same work with mFirst = 1, 2, 3 ... until a run in which nothing was refused.
//
// Unarmed, this costs the allocator's fast way nothing: arming closes it for all threads, and the slow way asks here.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace utility {
namespace AllocationFaults {

/// What fails.
enum Door {
    kBlocks, // SmallBlockAllocator::Allocate: null
    kPages   // what the allocator takes from the system for its clusters and caches
};

struct Plan
{
    Door mDoor = kBlocks;
    std::uint64_t mFirst = 1;              // counted from 1
    std::uint64_t mHowMany = 1;            // from the first on; kAllFurther for all of them
    bool mOfThisThreadOnly = false;        // count and refuse only what the arming thread asks for
};

inline constexpr std::uint64_t kAllFurther = UINT64_MAX;

/// Arms a plan for as long as it lives. One at a time in the process.
class Scope
{
public:
    explicit Scope(const Plan& inPlan) noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    /// How often the door was asked, and how often it refused.
    std::uint64_t Asked() const noexcept;
    std::uint64_t Refused() const noexcept;
};

/// Lets SmallBlockAllocator::Metrics::GetSnapshot answer that there are no metrics, for as long as it lives.
class NoMetricsScope
{
public:
    NoMetricsScope() noexcept;
    ~NoMetricsScope();
    NoMetricsScope(const NoMetricsScope&) = delete;
    NoMetricsScope& operator=(const NoMetricsScope&) = delete;
};

/// Asked by the allocator.
bool Refuses(Door inDoor) noexcept;
bool HasMetrics() noexcept;

} // namespace AllocationFaults
} // namespace utility
} // namespace tvxcore
