#include <Platform/ExceptionRecords.h>

#include <windows.h>

namespace ORL {
namespace FailureReport {
namespace Platform {

ExceptionFacts ReadExceptionRecord_Impl(const _EXCEPTION_RECORD* inRecord) noexcept
{
    return {inRecord->ExceptionCode, inRecord->ExceptionFlags,
            reinterpret_cast<std::uint64_t>(inRecord->ExceptionAddress), inRecord->ExceptionInformation[0],
            inRecord->ExceptionInformation[1]};
}

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
