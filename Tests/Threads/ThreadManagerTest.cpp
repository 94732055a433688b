#include <ORLThreadManager.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ORLString.h>
#include <Platform/ThreadManager.h>
#include <tvxcore/Executor.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;

// The main thread of a process can be set only once. The test command therefore runs every test in its own process. The
// tests below also pass in one process, as long as the same thread registers.

namespace {

std::string NameOfThisThread()
{
    return MakeStdString(ThreadManager::GetCurrentThreadInfo()->GetThreadName());
}

std::string ModuleOfThisThread()
{
    return MakeStdString(ThreadManager::GetCurrentThreadInfo()->GetCurrentModule());
}

template <class Function>
void OnAnotherThread(Function inFunction)
{
    std::thread(inFunction).join();
}

// Registers the main thread before each test and unregisters it afterwards.
class ThreadRecords : public testing::Test
{
protected:
    void SetUp() override { ThreadManager::RegisterMainThread(); }
    void TearDown() override { ThreadManager::UnregisterMainThread(); }

    ORLTest::CheckRecorder mRecorder;
};

} // namespace

TEST_F(ThreadRecords, MainThread_IsNamedAndOthersAreUnnamed)
{
    EXPECT_EQ("CorvantoMain", NameOfThisThread());
    EXPECT_EQ("Corvanto", ModuleOfThisThread());
    OnAnotherThread([] {
        EXPECT_EQ("Unnamed Thread", NameOfThisThread());
        EXPECT_EQ("Unnamed Module", ModuleOfThisThread());
        EXPECT_FALSE(ThreadManager::CurrentThreadIsMainThread());
    });
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
}

TEST_F(ThreadRecords, RegisteredThread_HasItsOwnRecord)
{
    OnAnotherThread([] {
        ConstString name("Worker");
        ConstString module("Renderer");
        ThreadManager::RegisterThread(name, module);
        EXPECT_EQ("Worker", NameOfThisThread());
        EXPECT_EQ("Renderer", ModuleOfThisThread());
        ThreadManager::UnregisterThread();
    });
    EXPECT_EQ("CorvantoMain", NameOfThisThread());
}

// Frees a slot to learn which one RegisterMainThread will get: the OS allocates the slot that was freed last.
TEST(ThreadSlot, AfterUnregisterThread_StillHoldsTheAddressOfTheRecord)
{
    namespace Platform = ThreadManager::Platform;
    const std::uint32_t slot = Platform::AllocateSlot_Impl();
    Platform::FreeSlot_Impl(slot);
    ORLTest::CheckRecorder recorder;
    ThreadManager::RegisterMainThread();
    ASSERT_EQ(ThreadManager::GetCurrentThreadInfo(), Platform::GetSlotValue_Impl(slot));
    OnAnotherThread([slot] {
        ConstString name("Worker");
        ConstString module("Renderer");
        ThreadManager::RegisterThread(name, module);
        const void* const record = ThreadManager::GetCurrentThreadInfo();
        ThreadManager::UnregisterThread();
        EXPECT_EQ(record, Platform::GetSlotValue_Impl(slot));
    });
    ThreadManager::UnregisterMainThread();
}

TEST_F(ThreadRecords, EmptyNames_FireTheContractAndTheRecordIsStillBuilt)
{
    mRecorder.Clear();
    OnAnotherThread([] {
        ConstString name;
        ConstString module("Renderer");
        ThreadManager::RegisterThread(name, module);
        EXPECT_EQ("", NameOfThisThread());
        EXPECT_EQ("Renderer", ModuleOfThisThread());
        ThreadManager::UnregisterThread();
    });
    const std::vector<CheckReport> reports = mRecorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("!inThreadName.empty() && !inCurrentModule.empty()");
}

TEST_F(ThreadRecords, SecondThreadThatRegistersAsMain_IsReportedAndTheFirstStaysMain)
{
    mRecorder.Clear();
    // Nothing deletes the replaced record: the library keeps it, because this thread's slot still points to it.
    const std::unique_ptr<ThreadManager::ThreadInfo> replaced(ThreadManager::GetCurrentThreadInfo());
    OnAnotherThread([] {
        // The slot is already allocated, so the contract of the slot fails too, and the first thread's record is
        // replaced.
        ThreadManager::RegisterMainThread();
        EXPECT_FALSE(ThreadManager::CurrentThreadIsMainThread());
        ThreadManager::UnregisterMainThread();
    });
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
    const std::vector<CheckReport> asserts = mRecorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(1u, asserts.size());
    ExpectReport(asserts[0])
        .Expression("tvxcore::threads::AtomicRead(mainThreadID) == thisThreadID")
        .Message("RegisterMainThread has been called from more than one thread.\r\n")
        .Function("ORL::ThreadManager::`anonymous-namespace'::SetOrCheckMainThreadID");
    const std::vector<CheckReport> contracts = mRecorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, contracts.size());
    ExpectReport(contracts[0]).Expression("sInfoIndexAllocated == false");
}

TEST_F(ThreadRecords, UnregisterOfAThreadWithoutRecord_FiresTheContract)
{
    mRecorder.Clear();
    OnAnotherThread([] { ThreadManager::UnregisterThread(); });
    const std::vector<CheckReport> reports = mRecorder.Reports(CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("info");
}

TEST_F(ThreadRecords, NamingAThreadWithNoDebuggerAttached_DoesNothingVisible)
{
    mRecorder.Clear();
    OnAnotherThread([this] {
        ConstString name("Renderer");
        ConstString module("Editor");
        ThreadManager::RegisterThread(name, module);
        ThreadManager::Platform::NameThread_Impl("Another name");
        ThreadManager::Platform::NameThread_Impl("");
        EXPECT_EQ("Renderer", NameOfThisThread()) << "the record is not asked";
        EXPECT_TRUE(mRecorder.Reports().empty());
        ThreadManager::UnregisterThread();
    });
}

TEST_F(ThreadRecords, RegisteredName_IsTraced)
{
    static std::string sLines;
    sLines.clear();
    const tvxcore::debug::TraceSink old = tvxcore::debug::InstallTraceSink(
        [](const unsigned char* inText) { sLines += reinterpret_cast<const char*>(inText); });
    const auto registerOne = [] {
        ConstString name("Renderer");
        ConstString module("Editor");
        ThreadManager::RegisterThread(name, module);
        ThreadManager::UnregisterThread();
    };
    OnAnotherThread(registerOne);
    EXPECT_EQ("", sLines) << "the category is off at first";
    tvxcore::debug::SetTraceLevel("ORL.ThreadManager", 1);
    std::string identifier;
    OnAnotherThread([&] {
        identifier = std::to_string(tvxcore::threads::GetCurrentThreadID());
        registerOne();
    });
    tvxcore::debug::SetTraceLevel("ORL.ThreadManager", tvxcore::debug::kTraceOff);
    tvxcore::debug::InstallTraceSink(old);
    EXPECT_EQ("<" + identifier + "> <ORL.ThreadManager> <1> This thread is \"Renderer\" of \"Editor\".\n", sLines);
}

TEST_F(ThreadRecords, ManyThreadsAtOnce_EachSeeTheirOwnRecord)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i] {
            for (int round = 0; round < 100; ++round) {
                const std::string text = "worker " + std::to_string(i) + "." + std::to_string(round);
                ConstString name(text.c_str());
                ConstString module("Test");
                ThreadManager::RegisterThread(name, module);
                EXPECT_EQ(text, NameOfThisThread());
                ThreadManager::UnregisterThread();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(ThreadManager, BeforeRegistration_EveryThreadIsUnnamedAndNoneIsMain)
{
    OnAnotherThread([] {
        EXPECT_EQ("Unnamed Thread", NameOfThisThread());
        EXPECT_EQ("Unnamed Module", ModuleOfThisThread());
        EXPECT_FALSE(ThreadManager::CurrentThreadIsMainThread());
    });
}

TEST(ThreadManager, BeforeAStart_RegisteringAThreadFiresTheContract)
{
    ORLTest::CheckRecorder recorder;
    recorder.mThrow = true;
    ConstString name("Early");
    ConstString module("Test");
    EXPECT_THROW(ThreadManager::RegisterThread(name, module), ORLTest::CheckRecorder::ContractError);
    EXPECT_THROW(ThreadManager::UnregisterThread(), ORLTest::CheckRecorder::ContractError);
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kContract);
    ASSERT_EQ(2u, reports.size());
    ExpectReport(reports[0]).Expression("sInfoIndexAllocated");
    ExpectReport(reports[1]).Expression("sInfoIndexAllocated");
}

TEST(ThreadManager, AfterUnregistering_TheMainThreadStaysMain)
{
    ORLTest::CheckRecorder recorder;
    ThreadManager::RegisterMainThread();
    ThreadManager::UnregisterMainThread();
    EXPECT_TRUE(ThreadManager::CurrentThreadIsMainThread());
    EXPECT_EQ("Unnamed Thread", NameOfThisThread());
}

TEST(ThreadManager, SecondCycle_ReportsTheOldNumberOnceAndAllocatesAgain)
{
    ORLTest::CheckRecorder recorder;
    ThreadManager::RegisterMainThread();
    ThreadManager::UnregisterMainThread();
    recorder.Clear();
    ThreadManager::RegisterMainThread();
    const std::vector<CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("sThreadLocalStorage_InfoIndex == TLS_OUT_OF_INDEXES");
    EXPECT_EQ("CorvantoMain", NameOfThisThread());
    ThreadManager::UnregisterMainThread();
}
