#include <ORLEvent.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <Platform/Event.h>
#include <Stress.h>
#include <WaitableWithoutHandle.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;
using ORLTest::Rounds;
using ORLTest::WaitableWithoutHandle;

namespace {

unsigned long RefuseEvents()
{
    return 8; // the Windows error for out of memory
}

struct NoMoreEvents
{
    NoMoreEvents() { Events::Platform::InstallCreateFault(&RefuseEvents); }
    ~NoMoreEvents() { Events::Platform::InstallCreateFault(nullptr); }
};

} // namespace

TEST(WaitableObject, PollOfAnUnsignalledOne_TimesOutAtOnce)
{
    WaitableObject event;
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(0));
}

TEST(WaitableObject, OneSignal_LetsOneWaitThrough)
{
    WaitableObject event;
    event.Signal();
    EXPECT_EQ(kSuccess, event.WaitForSignal(0));
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(0));
}

TEST(WaitableObject, TwoSignalsWithNoWaiter_LeaveOneSignal)
{
    WaitableObject event;
    event.Signal();
    event.Signal();
    EXPECT_EQ(kSuccess, event.WaitForSignal(-1));
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(0));
}

TEST(WaitableObject, WaitWithALimit_RunsOut)
{
    WaitableObject event;
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(1));
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(20));
    event.Signal();
    EXPECT_EQ(kSuccess, event.WaitForSignal(60000));
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(0)) << "the earlier waits left nothing behind";
}

TEST(WaitableObject, NegativeTimeIsTakenAsUnsigned_SoItIsNotAPoll)
{
    WaitableObject request;
    WaitableObject answer;
    Result result = kGeneralFailure;
    std::thread waiter([&] {
        request.Signal();
        result = answer.WaitForSignal(-2);
    });
    EXPECT_EQ(kSuccess, request.WaitForSignal(-1));
    answer.Signal();
    waiter.join();
    EXPECT_EQ(kSuccess, result);
}

TEST(WaitableObject, EachSignal_ReleasesOneOfManyWaiters)
{
    WaitableObject event;
    WaitableObject released;
    std::atomic<int> count{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 5; ++i) {
        waiters.emplace_back([&] {
            EXPECT_EQ(kSuccess, event.WaitForSignal(-1));
            ++count;
            released.Signal();
        });
    }
    for (int i = 1; i <= 5; ++i) {
        event.Signal();
        EXPECT_EQ(kSuccess, released.WaitForSignal(-1));
        EXPECT_EQ(i, count) << "one more thread for one more signal";
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(kWaitTimeout, event.WaitForSignal(0));
}

TEST(WaitableObject, WhatWasWrittenBeforeASignal_IsSeenAfterTheWait)
{
    const int rounds = Rounds(3000);
    WaitableObject filled;
    WaitableObject emptied;
    int slot = 0; // deliberately not atomic: the events order its use
    std::thread consumer([&] {
        for (int i = 1; i <= rounds; ++i) {
            filled.WaitForSignal(-1);
            EXPECT_EQ(i, slot);
            emptied.Signal();
        }
    });
    for (int i = 1; i <= rounds; ++i) {
        slot = i;
        filled.Signal();
        emptied.WaitForSignal(-1);
    }
    consumer.join();
}

TEST(WaitableObject, ReleasedThreadMayDestroyIt_WhileSignalIsOnItsWayOut)
{
    const int rounds = Rounds(1000);
    for (int i = 0; i < rounds; ++i) {
        auto event = std::make_unique<WaitableObject>();
        std::thread signaller([&event = *event] { event.Signal(); });
        EXPECT_EQ(kSuccess, event->WaitForSignal(-1));
        event.reset();
        signaller.join();
    }
}

TEST(WaitableObject, WaitsThatTimeOutBesideSignals_LoseNoSignal)
{
    // The waiters' timeouts are so short that many expire, and signals come one at a time: each must release a waiter.
    const int signals = Rounds(1000);
    WaitableObject event;
    std::atomic<int> taken{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] {
            while (!stop) {
                if (event.WaitForSignal(1) == kSuccess) {
                    ++taken;
                }
            }
        });
    }
    for (int i = 1; i <= signals; ++i) {
        event.Signal();
        while (taken != i) {
            std::this_thread::yield();
        }
    }
    stop = true;
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(signals, taken);
}

TEST(WaitableObject, SystemGivesNoEvent_AssertsAndThrows)
{
    CheckRecorder recorder;
    NoMoreEvents fault;
    EXPECT_THROW(WaitableObject(), EventFailure);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Kind(CheckReport::kAssert).Expression("mEvent").Message("");
}

TEST(WaitableObject, SystemRefusesTheSignal_AssertsAndThrows)
{
    CheckRecorder recorder;
    WaitableWithoutHandle event;
    EXPECT_THROW(event.Signal(), EventFailure);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Kind(CheckReport::kAssert).Expression("eventOK");
}

TEST(WaitableObject, SystemCannotWait_IsAResultAndNoException)
{
    CheckRecorder recorder;
    WaitableWithoutHandle event;
    EXPECT_EQ(kWaitFailed, event.WaitForSignal(0));
    EXPECT_EQ(kWaitFailed, event.WaitForSignal(-1));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(EventFailure, SaysWhoItIs)
{
    EXPECT_STREQ("ORL::EventFailure exception", EventFailure().what());
}

TEST(PlatformEvent, ManualReset_LetsEveryoneThroughAndStays)
{
    using namespace Events::Platform;
    void* event = nullptr;
    ASSERT_EQ(0u, CreateEvent_Impl(true, false, event));
    EXPECT_EQ(WaitOutcome::kTimeout, WaitForEvent_Impl(event, 0));
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] { EXPECT_EQ(WaitOutcome::kSignalled, WaitForEvent_Impl(event, kEndless)); });
    }
    EXPECT_EQ(0u, SetEvent_Impl(event));
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(WaitOutcome::kSignalled, WaitForEvent_Impl(event, 0));
    DestroyEvent_Impl(event);
}

TEST(PlatformEvent, InitiallySignalled_LetsTheFirstWaitThrough)
{
    using namespace Events::Platform;
    void* event = nullptr;
    ASSERT_EQ(0u, CreateEvent_Impl(false, true, event));
    EXPECT_EQ(WaitOutcome::kSignalled, WaitForEvent_Impl(event, 0));
    EXPECT_EQ(WaitOutcome::kTimeout, WaitForEvent_Impl(event, 0));
    DestroyEvent_Impl(event);
}

TEST(PlatformEvent, NullHandle_IsAnInvalidHandle)
{
    using namespace Events::Platform;
    EXPECT_EQ(6u, SetEvent_Impl(nullptr));
    EXPECT_EQ(WaitOutcome::kFailed, WaitForEvent_Impl(nullptr, 0));
    DestroyEvent_Impl(nullptr);
}
