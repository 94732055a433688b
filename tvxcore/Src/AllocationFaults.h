// Fault injection for tests: makes chosen allocations fail.
//
//   AllocationFaults::Plan plan;
//   plan.mFirst = 3;                                        // only the third allocation from now fails
//   const AllocationFaults::Scope faults(plan);
//   ...
//   EXPECT_EQ(faults.Refused(), 1u);
//
// A sweep runs the same work with mFirst = 1, 2, 3 ... until no allocation fails.
//
// While no plan is armed, fault injection costs the allocator's fast path nothing: arming disables that path for all
// threads, and only the slow path checks for faults.
#pragma once

#include <cstdint>

namespace tvxcore {
namespace utility {
namespace AllocationFaults {

/// The kind of allocation that fails.
enum AllocationKind {
    kBlocks, // SmallBlockAllocator::Allocate: returns null
    kPages   // memory that the allocator maps for its clusters and caches
};

struct Plan
{
    AllocationKind mKind = kBlocks;
    std::uint64_t mFirst = 1;        // counted from 1
    std::uint64_t mFailureCount = 1; // consecutive failures; kAllFurther for no limit
    bool mOfThisThreadOnly = false;  // count and fail only allocations by the arming thread
};

inline constexpr std::uint64_t kAllFurther = UINT64_MAX;

/// Arms a plan for the lifetime of the object. Only one Scope may exist in the process.
class Scope
{
public:
    explicit Scope(const Plan& inPlan) noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    /// Return the number of allocations counted, and the number of those that failed.
    std::uint64_t Asked() const noexcept;
    std::uint64_t Refused() const noexcept;
};

/// Makes SmallBlockAllocator::Metrics::GetSnapshot return false for the lifetime of the object.
class NoMetricsScope
{
public:
    NoMetricsScope() noexcept;
    ~NoMetricsScope();
    NoMetricsScope(const NoMetricsScope&) = delete;
    NoMetricsScope& operator=(const NoMetricsScope&) = delete;
};

/// Called on the allocator's slow path. Returns whether this allocation must fail.
bool Refuses(AllocationKind inKind) noexcept;
bool HasMetrics() noexcept;

} // namespace AllocationFaults
} // namespace utility
} // namespace tvxcore
