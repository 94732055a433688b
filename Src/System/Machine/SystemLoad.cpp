#include <ORLSystemInfo.h>

#include <ORLDebug.h>
#include <Platform/SystemInfo.h>

#include <atomic>

namespace ORL {
namespace SystemInfo {

namespace {

using namespace Platform;

// The first call creates the query and its counter, which are never closed. If two threads make the first call at the
// same time, each may create a query, and one of the two stays unused.
std::atomic<LoadQuery> sLoadQuery{nullptr};
std::atomic<LoadCounter> sLoadCounter{nullptr};

constexpr char kFunction[] = "ORL::SystemInfo::Platform::GetSystemLoad_Impl";

void OpenQuery()
{
    LoadQuery query = nullptr;
    if (OpenLoadQuery_Impl(query) != SystemErrors::kNoError) {
        return;
    }
    LoadCounter counter = nullptr;
    if (AddLoadCounter_Impl(query, counter) != SystemErrors::kNoError) {
        ORL_ASSERT_IN(false, kFunction);
    }
    sLoadCounter.store(counter, std::memory_order_release);
    sLoadQuery.store(query, std::memory_order_release);
}

} // namespace

float GetSystemLoad()
{
    const bool isFirstCall = sLoadQuery.load(std::memory_order_acquire) == nullptr;
    if (isFirstCall) {
        OpenQuery();
    }
    const LoadQuery query = sLoadQuery.load(std::memory_order_acquire);
    if (query != nullptr && CollectLoadSample_Impl(query) != SystemErrors::kNoError) {
        ORL_ASSERT_IN(false, kFunction);
        return 0;
    }
    const LoadCounter counter = sLoadCounter.load(std::memory_order_acquire);
    long percent = 0;
    if (counter == nullptr || CheckLoadSample_Impl(counter) != SystemErrors::kNoError
        || GetLoadPercent_Impl(counter, percent) != SystemErrors::kNoError) {
        return 0;
    }
    // Computing a load needs two samples, even if the counter returns a value after one.
    return isFirstCall ? 0.0f : static_cast<float>(percent);
}

} // namespace SystemInfo
} // namespace ORL
