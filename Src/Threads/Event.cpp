#include <ORLEvent.h>

#include <ORLDebug.h>
#include <Platform/Event.h>

namespace ORL {

void EventBase::SetEvent(void* inEvent)
{
    const bool eventOK = Events::Platform::SetEvent_Impl(inEvent) == 0;
    ORL_ASSERT(eventOK);
    if (!eventOK) {
        throw EventFailure();
    }
}

template <bool kManualReset, bool kInitiallySignalled>
Event<kManualReset, kInitiallySignalled>::Event() : mEvent(nullptr)
{
    Events::Platform::CreateEvent_Impl(kManualReset, kInitiallySignalled, mEvent);
    ORL_ASSERT(mEvent);
    if (mEvent == nullptr) {
        throw EventFailure();
    }
}

template <bool kManualReset, bool kInitiallySignalled>
Event<kManualReset, kInitiallySignalled>::~Event()
{
    Events::Platform::DestroyEvent_Impl(mEvent);
}

template class Event<false, false>;

WaitableObject::WaitableObject() = default;

WaitableObject::~WaitableObject() = default;

void WaitableObject::Signal()
{
    SetEvent(mEvent);
}

Result WaitableObject::WaitForSignal(int inMilliseconds)
{
    using Events::Platform::WaitOutcome;
    switch (Events::Platform::WaitForEvent_Impl(mEvent, static_cast<std::uint32_t>(inMilliseconds))) {
    case WaitOutcome::kSignalled: return kSuccess;
    case WaitOutcome::kTimeout: return kWaitTimeout;
    default: return kWaitFailed;
    }
}

} // namespace ORL
