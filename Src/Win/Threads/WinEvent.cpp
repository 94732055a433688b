#include <Platform/Event.h>

#include <windows.h>

#include <atomic>

namespace ORL {
namespace Events {
namespace Platform {

namespace {

std::atomic<CreateFault> sCreateFault{nullptr};

} // namespace

unsigned long CreateEvent_Impl(bool inManualReset, bool inInitiallySignalled, void*& outEvent)
{
    outEvent = nullptr;
    const CreateFault fault = sCreateFault.load(std::memory_order_relaxed);
    if (const unsigned long error = fault != nullptr ? fault() : 0; error != 0) {
        return error;
    }
    outEvent = ::CreateEventW(nullptr, inManualReset, inInitiallySignalled, nullptr);
    return outEvent != nullptr ? 0 : ::GetLastError();
}

void DestroyEvent_Impl(void* inEvent)
{
    if (inEvent != nullptr) {
        ::CloseHandle(inEvent);
    }
}

unsigned long SetEvent_Impl(void* inEvent)
{
    return ::SetEvent(inEvent) ? 0 : ::GetLastError();
}

WaitOutcome WaitForEvent_Impl(void* inEvent, std::uint32_t inMilliseconds)
{
    switch (::WaitForSingleObject(inEvent, inMilliseconds)) {
    case WAIT_OBJECT_0: return WaitOutcome::kSignalled;
    case WAIT_TIMEOUT: return WaitOutcome::kTimeout;
    default: return WaitOutcome::kFailed;
    }
}

void InstallCreateFault(CreateFault inFault)
{
    sCreateFault.store(inFault, std::memory_order_relaxed);
}

} // namespace Platform
} // namespace Events
} // namespace ORL
