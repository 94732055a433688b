#pragma once

#include "Touch.h"
#include "TouchObjects.h"

#include <ORLFoundation.h>

namespace Consumer {

inline void TouchEventsAndGates()
{
    using namespace ORL;
    class OwnEvent : public Event<false, false>
    {
    public:
        void Set() { EventBase::SetEvent(mEvent); }
    };
    OwnEvent().Set();
    WaitableObject object;
    object.Signal();
    WaitableGate gate;
    gate.Open();
    gate.Close();
    WaitableGate* const pooled = WaitableGatePool::RetrieveGate();
    pooled->Open(); // the pool accepts only open gates
    Touch(object.WaitForSignal(0), gate.Wait(0), pooled);
    WaitableGatePool::ReturnGate(pooled);
    delete new WaitableGate;
}

inline void TouchThreadRecords()
{
    using namespace ORL;
    const ThreadManager::ThreadInfo info(ConstString("thread"), ConstString("module"), false);
    Touch(info.GetThreadName(), info.GetCurrentModule(), ThreadManager::GetCurrentThreadInfo(),
          ThreadManager::CurrentThreadIsMainThread(), &ThreadManager::RegisterThread, &ThreadManager::UnregisterThread,
          &ThreadManager::RegisterMainThread, &ThreadManager::UnregisterMainThread);
}

inline void TouchQueues()
{
    using namespace ORL;
    const InterfaceRef<ThreadedWorkQueue, ORLUnknown> queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("queue"), ConstString("module"));
    queue->QueueRequest(ThreadedWorkQueue::Request(new Work));
    const InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown> flush(new ThreadedWorkQueueFlush);
    flush->Init(queue);
    flush->Flush();
    queue->QueueRequest(MakeFunctionRequest([] {}));
    Touch(QueueFunction(queue, [] { return 1; }).get());
    ThreadedWorkQueueFlush::FlushQueue(queue);
    queue->Stop();
    Touch(&ThreadedWorkQueue::SetIdleProcess, &ThreadedWorkQueue::ClearIdleProcess, &ThreadedWorkQueue::Pause,
          &ThreadedWorkQueue::Resume, &ThreadedWorkQueue::BlockWhilePaused, &ThreadedWorkQueue::GetNumberOfThreads,
          &ThreadedWorkQueue::CurrentThreadIsQueueThread, &SharedThreadedWorkQueue::Instance,
          &SharedThreadedWorkQueue::Retrieve, &SharedThreadedWorkQueue::RetrieveOrCreate,
          &SharedThreadedWorkQueue::RetrieveSingleThreaded, &SharedThreadedWorkQueue::RetrieveOrCreateSingleThreaded,
          &SharedThreadedWorkQueue::Shutdown);
}

inline void TouchThreads()
{
    TouchEventsAndGates();
    TouchThreadRecords();
    TouchQueues();
}

} // namespace Consumer
