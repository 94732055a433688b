// Tests the published identity, without line numbers, of the checks in the folder Threads.
#include "PublishedSites.h"
#include <WaitableWithoutHandle.h>

#include <ORLEvent.h>
#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLWaitableGate.h>
#include <Platform/Event.h>
#include <Threads/WaitableGatePoolAlgorithm.h>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;
using ORLTest::WaitableWithoutHandle;

namespace {

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;

void RunQueue(int inPolicy, const char* inThreadName, const char* inModuleName)
{
    const Queue queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, inPolicy, ConstString(inThreadName), ConstString(inModuleName));
    queue->Stop();
}

void StopTwice()
{
    const Queue queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Thread"), ConstString("Module"));
    queue->Stop();
    queue->Stop();
}

void DestroyRunning()
{
    const Queue queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Thread"), ConstString("Module"));
}

void SignalWithoutHandle()
{
    WaitableWithoutHandle().Signal();
}

void MakeAnEventThatTheSystemRefuses()
{
    struct Refusal
    {
        Refusal()
        {
            Events::Platform::InstallCreateFault([] { return 8ul; });
        } // Windows error 8: out of memory
        ~Refusal() { Events::Platform::InstallCreateFault(nullptr); }
    } const refusal;
    WaitableObject refused;
}

/// With this policy, a pool creates no gates but returns sGate, and destroys none.
struct FixedGatePolicy : Sync::SystemPolicy
{
    static inline WaitableGate* sGate = nullptr;

    template <class T>
    static T* New()
    {
        return sGate;
    }
    template <class T>
    static void Delete(T*)
    {
    }
};

using Pool = Sync::WaitableGatePoolAlgorithm<FixedGatePolicy>;

void LendAGateThatIsOpen()
{
    const Pool pool;
    WaitableGate gate;
    gate.Open();
    FixedGatePolicy::sGate = &gate;
    Pool::RetrieveGate();
}

void LendNoGate()
{
    const Pool pool;
    FixedGatePolicy::sGate = nullptr;
    Pool::RetrieveGate();
}

void ReturnAClosedGate()
{
    WaitableGate gate;
    WaitableGatePool::ReturnGate(&gate);
}

const PublishedSite kSites[] = {
    // work queues
    {__LINE__, PublishedSite::kAssert, "inThreadAllocationPolicy > 0", "", nullptr, 0,
     "ORL::`anonymous-namespace'::ConvertThreadAllocationPolicy", [] { RunQueue(-2, "Thread", "Module"); }},
    {__LINE__, PublishedSite::kInputContract, "!inThreadName.empty()", "", nullptr, 0, "",
     [] { RunQueue(1, "", "Module"); }},
    {__LINE__, PublishedSite::kInputContract, "!inModuleName.empty()", "", nullptr, 0, "",
     [] { RunQueue(1, "Thread", ""); }},
    {__LINE__, PublishedSite::kAssert, "!mImpl->mExecutor->IsTerminated()",
     "Somebody called stop on this Queue more than once (or without calling Initialize), which is bad.\r\n", nullptr, 0,
     "ORL::ThreadedWorkQueue::Stop", &StopTwice},
    {__LINE__, PublishedSite::kAssert, "mImpl->mExecutor->IsTerminated()",
     "Stop() was not called on a ThreadedWorkQueue.\r\n", nullptr, 0, "ORL::ThreadedWorkQueue::~ThreadedWorkQueue",
     &DestroyRunning},
    // events and gates
    {__LINE__, PublishedSite::kAssert, "mEvent", "", nullptr, 0, nullptr, &MakeAnEventThatTheSystemRefuses},
    {__LINE__, PublishedSite::kInputContract, "sPool", "", nullptr, 0, "", [] { Pool::RetrieveGate(); }},
    {__LINE__, PublishedSite::kInputContract, "sPool", "", nullptr, 0, "", [] { Pool::ReturnGate(nullptr); }},
    {__LINE__, PublishedSite::kOutputContract, "ret", "", nullptr, 0, "", &LendNoGate},
    {__LINE__, PublishedSite::kOutputContract, "kWaitTimeout == ret->Wait(0)", "", nullptr, 0, "",
     &LendAGateThatIsOpen},
    {__LINE__, PublishedSite::kAssert, "eventOK", "", nullptr, 0, nullptr, &SignalWithoutHandle},
    {__LINE__, PublishedSite::kInputContract, "inGate", "", nullptr, 0, "",
     [] { WaitableGatePool::ReturnGate(nullptr); }},
    {__LINE__, PublishedSite::kInputContract, "kSuccess == inGate->Wait(0)", "", nullptr, 0, "", &ReturnAClosedGate},
};

} // namespace

TEST(PublishedSites, OfThreads_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
