// Floor: Platform
// The contents of a Windows exception record.
#pragma once

#include <cstdint>

struct _EXCEPTION_RECORD;

namespace ORL {
namespace FailureReport {
namespace Platform {

/// The fields that a report needs.
struct ExceptionFacts
{
    std::uint32_t mCode;
    std::uint32_t mFlags;
    std::uint64_t mAddress;         // address of the instruction
    std::uint64_t mFirstParameter;  // access violation: 0 for a read, else a write or an execution
    std::uint64_t mSecondParameter; // access violation: the address that was not accessible
};

/// Reads inRecord, which must not be null. Never throws.
ExceptionFacts ReadExceptionRecord_Impl(const _EXCEPTION_RECORD* inRecord) noexcept;

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
