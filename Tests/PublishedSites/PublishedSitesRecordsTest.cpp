// Tests the published identity, without line numbers, of the checks in thread records and flushes.
#include "PublishedSites.h"
#include <ExpectReport.h>

#include <ORLThreadManager.h>
#include <ORLThreadedWorkQueueFlush.h>
#include <Platform/ThreadManager.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <thread>

// The linker redirects the calls to this function, which simulates a system without a free slot.
std::uint32_t WrappedAllocateSlot() __asm__("__wrap__ZN3ORL13ThreadManager8Platform17AllocateSlot_ImplEv");
std::uint32_t RealAllocateSlot() __asm__("__real__ZN3ORL13ThreadManager8Platform17AllocateSlot_ImplEv");

namespace {

bool sNoSlotIsFree = false;

} // namespace

std::uint32_t WrappedAllocateSlot()
{
    return sNoSlotIsFree ? ORL::ThreadManager::Platform::kNoSlot : RealAllocateSlot();
}

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectPublished;
using ORLTest::ExpectReport;
using ORLTest::PublishedSite;

namespace {

// Runs inWork on another thread and rethrows its exception here.
void OnAnotherThread(void (*inWork)())
{
    std::exception_ptr left;
    std::thread([&left, inWork] {
        try {
            inWork();
        } catch (...) {
            left = std::current_exception();
        }
    }).join();
    if (left) {
        std::rethrow_exception(left);
    }
}

void RegisterThread(const char* inName, const char* inModule)
{
    ConstString name(inName);
    ConstString module(inModule);
    ThreadManager::RegisterThread(name, module);
}

void RegisterMainThreadAndIgnoreItsContract()
{
    try {
        ThreadManager::RegisterMainThread();
    } catch (const CheckRecorder::ContractError&) {
    }
}

const PublishedSite kBeforeTheStart[] = {
    {__LINE__, PublishedSite::kInputContract, "sInfoIndexAllocated", "", nullptr, 0, "",
     [] { RegisterThread("Thread", "Module"); }},
    {__LINE__, PublishedSite::kInputContract, "sInfoIndexAllocated", "", nullptr, 0, "",
     &ThreadManager::UnregisterThread},
};

const PublishedSite kStarted[] = {
    {__LINE__, PublishedSite::kInputContract, "sInfoIndexAllocated == false", "", nullptr, 0, "",
     &ThreadManager::RegisterMainThread},
    {__LINE__, PublishedSite::kAssert, "tvxcore::threads::AtomicRead(mainThreadID) == thisThreadID",
     "RegisterMainThread has been called from more than one thread.\r\n", nullptr, 0,
     "ORL::ThreadManager::`anonymous-namespace'::SetOrCheckMainThreadID",
     [] { OnAnotherThread(&RegisterMainThreadAndIgnoreItsContract); }},
    {__LINE__, PublishedSite::kInputContract, "!inThreadName.empty() && !inCurrentModule.empty()", "", nullptr, 0, "",
     [] { RegisterThread("", "Module"); }},
    {__LINE__, PublishedSite::kInputContract, "!inThreadName.empty() && !inCurrentModule.empty()", "", nullptr, 0, "",
     [] { RegisterThread("Thread", ""); }},
    {__LINE__, PublishedSite::kInputContract, "info", "", nullptr, 0, "",
     [] { OnAnotherThread(&ThreadManager::UnregisterThread); }},
};

const PublishedSite kSecondStart[] = {
    {__LINE__, PublishedSite::kAssert, "sThreadLocalStorage_InfoIndex == TLS_OUT_OF_INDEXES", "", nullptr, 0, nullptr,
     &ThreadManager::RegisterMainThread},
};

const PublishedSite kNoSlot[] = {
    {__LINE__, PublishedSite::kAssert, "sThreadLocalStorage_InfoIndex != TLS_OUT_OF_INDEXES", "", nullptr, 0, nullptr,
     &ThreadManager::RegisterMainThread},
};

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using Flush = InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown>;

void FlushQueue(const Queue& inQueue)
{
    const Flush flush(new ThreadedWorkQueueFlush);
    flush->Init(inQueue);
    flush->Flush();
}

class FlushesItsOwnQueue : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit FlushesItsOwnQueue(const Queue& inQueue) : mQueue(inQueue) {}
    void Process() override { FlushQueue(mQueue); }

private:
    const Queue mQueue;
};

Queue StartedQueue()
{
    const Queue queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Thread"), ConstString("Module"));
    return queue;
}

void FlushFromWithin()
{
    const Queue queue = StartedQueue();
    queue->QueueRequest(new FlushesItsOwnQueue(queue));
    queue->Stop();
}

constexpr char kFlush[] = "ORL::ThreadedWorkQueueFlush::Flush";

const PublishedSite kFlushSites[] = {
    {__LINE__, PublishedSite::kAssert, "false",
     "Init was not called in ThreadedWorkQueueFlush, or the provided Queue was NULL\r\n", nullptr, 0, kFlush,
     [] { FlushQueue(Queue()); }},
    {__LINE__, PublishedSite::kAssert, "false",
     "Attempted to flush a Queue from within the Queue.  This is not what you intended.\r\n", nullptr, 0, kFlush,
     &FlushFromWithin},
    {__LINE__, PublishedSite::kAssert, "false", "The Queue to flush has no threads.\r\n", nullptr, 0, kFlush,
     [] { FlushQueue(Queue(new ThreadedWorkQueue)); }},
};

} // namespace

TEST(PublishedSites, OfThreadRecords_AreReportedAsPublished)
{
    ExpectPublished(kBeforeTheStart);
    ThreadManager::RegisterMainThread();
    ExpectPublished(kStarted);
    ThreadManager::UnregisterMainThread();
    ExpectPublished(kSecondStart);
    ThreadManager::UnregisterMainThread();
}

void ExpectUnnamedThreadsWithoutASlot()
{
    sNoSlotIsFree = true;
    ExpectPublished(kNoSlot);
    const ThreadManager::ThreadInfo* const unnamed = ThreadManager::GetCurrentThreadInfo();
    EXPECT_EQ(ConstString("Unnamed Thread"), unnamed->GetThreadName());
    RegisterThread("Thread", "Module");
    EXPECT_EQ(unnamed, ThreadManager::GetCurrentThreadInfo());
    ThreadManager::UnregisterThread();
    ThreadManager::UnregisterMainThread();
    sNoSlotIsFree = false;
}

// Runs in its own process, because a slot that an earlier test has allocated would also be reported.
using PublishedSitesDeathTest = testing::Test;

TEST_F(PublishedSitesDeathTest, OfThreadRecordsWithoutASlot_AreReportedAsPublishedAndEveryThreadIsUnnamed)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ExpectUnnamedThreadsWithoutASlot();
            std::_Exit(HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(PublishedSites, OfTheFlush_AreReportedAsPublished)
{
    ExpectPublished(kFlushSites);
}

// If a queue refuses items, the check "queuedSuccessfully" fails once for each item, and the last check fails once.
TEST(PublishedSites, OfAFlushThatIsRefused_AreReportedAsPublished)
{
    const Queue queue = StartedQueue();
    queue->Stop();
    CheckRecorder recorder;
    FlushQueue(queue);
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(2u, reports.size());
    ExpectReport(reports[0]).Expression("queuedSuccessfully").Message("");
    ExpectReport(reports[1]).Expression("false").Message("Something went awry while queuing Flush items.\r\n");
    ExpectReport(reports[0]).Function(kFlush);
    ExpectReport(reports[1]).Function(kFlush);
}
