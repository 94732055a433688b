#include <Platform/SystemInfo.h>

#include <windows.h>

#include <pdh.h>
#include <pdhmsg.h>

namespace ORL {
namespace SystemInfo {
namespace Platform {

static_assert(kLoadInvalidData == static_cast<DWORD>(PDH_INVALID_DATA));
static_assert(kLoadNoData == static_cast<DWORD>(PDH_NO_DATA));

namespace {

SystemError ErrorOf(PDH_STATUS inStatus)
{
    return static_cast<DWORD>(inStatus);
}

} // namespace

SystemError OpenLoadQuery_Impl(LoadQuery& outQuery)
{
    PDH_HQUERY query = nullptr;
    const PDH_STATUS status = ::PdhOpenQueryW(nullptr, 1, &query);
    if (status == ERROR_SUCCESS) {
        outQuery = query;
    }
    return ErrorOf(status);
}

SystemError AddLoadCounter_Impl(LoadQuery inQuery, LoadCounter& outCounter)
{
    PDH_HCOUNTER counter = nullptr;
    const PDH_STATUS status = ::PdhAddCounterW(inQuery, L"\\Processor(_Total)\\% Processor Time", 0, &counter);
    if (status == ERROR_SUCCESS) {
        outCounter = counter;
    }
    return ErrorOf(status);
}

SystemError CollectLoadSample_Impl(LoadQuery inQuery)
{
    return ErrorOf(::PdhCollectQueryData(inQuery));
}

SystemError CheckLoadSample_Impl(LoadCounter inCounter)
{
    PDH_RAW_COUNTER raw;
    return ErrorOf(::PdhGetRawCounterValue(inCounter, nullptr, &raw));
}

SystemError GetLoadPercent_Impl(LoadCounter inCounter, long& outPercent)
{
    PDH_FMT_COUNTERVALUE value;
    const PDH_STATUS status = ::PdhGetFormattedCounterValue(inCounter, PDH_FMT_LONG, nullptr, &value);
    if (status == ERROR_SUCCESS) {
        outPercent = value.longValue;
    }
    return ErrorOf(status);
}

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
