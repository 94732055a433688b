// Fails each system call of a read, at each occurrence, with each errno that a resource shortage can cause. Delivered
// data must be correct, no read may be lost, no descriptor may stay open, and the next reads must work.
#include "AsyncReadsFixture.h"

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <FaultySystemCallsLinux.h>
#include <ProcessThreads.h>

#include <boost/thread/exceptions.hpp>

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <liburing.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

using Call = FaultySystemCalls::Call;

constexpr unsigned kReads = 3;
constexpr int kErrors[] = {EINTR, EAGAIN, EIO, ENOMEM, ENOSPC, EMFILE};

std::size_t CountOpenFiles()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

/// The results of a run that starts the reader, opens one file, queues kReads reads and stops the reader.
struct RunResult
{
    bool mHasStarted = false;
    int mOpened = 0;
    std::vector<Delivered> mDelivered;
    unsigned mCalls[FaultySystemCalls::kCallCount] = {};

    bool IsWhole() const
    {
        bool isWhole = mHasStarted && mOpened == kSuccess && mDelivered.size() == kReads;
        for (const Delivered& delivered : mDelivered) {
            isWhole = isWhole && delivered.mResult == kSuccess && delivered.mBytesRead == kBlock;
        }
        return isWhole;
    }
};

// CloseAndFail closes the descriptor even when it fails, as close does on Linux.
unsigned sClosesUntilFailure = 0;
int sCloseErrno = 0;

int CloseAndFail(int inFile)
{
    const int result = ::close(inFile);
    if (sClosesUntilFailure == 0 || --sClosesUntilFailure != 0) {
        return result;
    }
    errno = sCloseErrno;
    return -1;
}

// The errno that WaitForFailedCompletion stores in the next completion of a read; 0: none.
int sCompletionErrno = 0;

int WaitForFailedCompletion(io_uring* ioRing, io_uring_cqe** outCompletion)
{
    const int error = ORL::Linux::kSystem.mUringWaitCqe(ioRing, outCompletion);
    if (error == 0 && sCompletionErrno != 0 && ::io_uring_cqe_get_data(*outCompletion) != nullptr) {
        (*outCompletion)->res = -sCompletionErrno;
        sCompletionErrno = 0;
    }
    return error;
}

class AsyncReadFaults : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        mFolder.MakeFile("clip.mov", MakeContents(kReads * kBlock));
        mPath = mFolder.Path(u"clip.mov");
        mThreads = CountProcessThreads();
        mFiles = CountOpenFiles();
    }

    int RefusalOfTheRing() const
    {
        return GetParam() == "RingForbidden" ? EPERM : GetParam() == "RingAbsent" ? ENOSYS : 0;
    }

    template <class Plan>
    RunResult RunOnce(const Plan& inPlan)
    {
        RunResult run;
        CheckRecorder refusedPacketsAreReported;
        FaultySystemCalls calls;
        if (RefusalOfTheRing() != 0) {
            calls.Fail(FaultySystemCalls::kUringQueueInit, 1, RefusalOfTheRing(), FaultySystemCalls::kForEver);
        }
        inPlan(calls);
        try {
            StartupAsyncFileOperations();
            run.mHasStarted = true;
        } catch (const boost::thread_resource_error&) {
        }
        if (run.mHasStarted) {
            Read(run);
            TerminateAsyncFileOperations();
        }
        for (unsigned call = 0; call < FaultySystemCalls::kCallCount; ++call) {
            run.mCalls[call] = calls.Count(static_cast<Call>(call));
        }
        WaitForProcessThreads(mThreads);
        return run;
    }

    RunResult RunOnce()
    {
        return RunOnce([](FaultySystemCalls&) {});
    }

    void Read(RunResult& ioRun)
    {
        Deliveries deliveries;
        AsyncFileReader reader;
        ioRun.mOpened = AsyncFileReader::Open(mPath, reader);
        if (ioRun.mOpened == -1) {
            return; // after any other result the reader is open
        }
        for (unsigned i = 0; i < kReads; ++i) {
            reader.QueueReadRequest(i * kBlock, kBlock, mBuffer.Get() + i * kBlock, &Deliveries::OnRead, &deliveries,
                                    nullptr, nullptr);
        }
        reader.WaitForPendingReads();
        ioRun.mDelivered = deliveries.All();
    }

    void ExpectRightAndNothingLost(const RunResult& inRun)
    {
        if (inRun.mHasStarted && inRun.mOpened != -1) {
            EXPECT_EQ(kReads, inRun.mDelivered.size());
        }
        for (const Delivered& delivered : inRun.mDelivered) {
            if (delivered.mResult == kSuccess) {
                EXPECT_EQ(kBlock, delivered.mBytesRead);
                EXPECT_EQ(kBlock,
                          FirstWrongByte(static_cast<unsigned char*>(delivered.mBuffer), kBlock, delivered.mPosition));
            } else {
                EXPECT_FALSE(ResultSucceeded(delivered.mResult));
                EXPECT_EQ(0u, delivered.mBytesRead);
            }
        }
        EXPECT_EQ(mFiles, CountOpenFiles());
        EXPECT_EQ(0u, TheAsyncReadRequests().CountBusyRecords());
    }

    // Returns whether the call can fail; closing the ring cannot.
    static bool CanFail(Call inCall) { return inCall != FaultySystemCalls::kUringQueueExit; }

    // Returns whether the error ends the completion thread because a read or the ring fails permanently.
    // AsyncReadFailingCompletionTest covers these errors.
    static bool EndsTheMachinery(Call inCall, int inErrno)
    {
        const bool isPassing = inErrno == EINTR || inErrno == EAGAIN || inErrno == ENOMEM;
        return (inCall == FaultySystemCalls::kPRead || inCall == FaultySystemCalls::kUringWaitCqe) && !isPassing;
    }

    TempFolder mFolder;
    UTF16String mPath;
    AlignedBuffer mBuffer{kReads * kBlock};
    unsigned mThreads = 0;
    std::size_t mFiles = 0;
};

INSTANTIATE_TEST_SUITE_P(Engine, AsyncReadFaults, testing::ValuesIn(AsyncEngineNames()), NameOfEngine);

} // namespace

TEST_P(AsyncReadFaults, WithoutAFault_TheRoadMakesTheCallsThatAreMadeToFail)
{
    const RunResult run = RunOnce();
    EXPECT_TRUE(run.IsWhole());
    ExpectRightAndNothingLost(run);
    for (const Call call :
         {FaultySystemCalls::kOpen, FaultySystemCalls::kClose, FaultySystemCalls::kStatx, FaultySystemCalls::kSeek,
          FaultySystemCalls::kSetFlags, FaultySystemCalls::kCreateThread, FaultySystemCalls::kUringQueueInit,
          RefusalOfTheRing() == 0 ? FaultySystemCalls::kUringSubmit : FaultySystemCalls::kPRead}) {
        EXPECT_GT(run.mCalls[call], 0u) << "call " << call;
    }
}

TEST_P(AsyncReadFaults, EachCallFailingOnceWithEachError_LosesNothingAndTheNextReadsWork)
{
    const RunResult clean = RunOnce();
    for (unsigned number = 0; number < FaultySystemCalls::kCallCount; ++number) {
        const Call call = static_cast<Call>(number);
        for (unsigned at = 1; at <= clean.mCalls[number]; ++at) {
            for (const int error : kErrors) {
                if (!CanFail(call) || EndsTheMachinery(call, error)) {
                    continue;
                }
                SCOPED_TRACE("call " + std::to_string(number) + " number " + std::to_string(at) + " fails with errno "
                             + std::to_string(error));
                ExpectRightAndNothingLost(RunOnce([&](FaultySystemCalls& ioCalls) {
                    sClosesUntilFailure = call == FaultySystemCalls::kClose ? at : 0;
                    sCloseErrno = error;
                    ioCalls.Underlying().mClose = &CloseAndFail;
                    if (call != FaultySystemCalls::kClose) {
                        ioCalls.Fail(call, at, error);
                    }
                }));
                EXPECT_TRUE(RunOnce().IsWhole()) << "the next reads";
            }
        }
    }
}

// A temporary failure of a call must not lose a read.
TEST_P(AsyncReadFaults, ShortageThatPasses_CostsNoRead)
{
    for (const int error : {EINTR, EAGAIN, EBUSY, ENOMEM}) {
        for (const Call call :
             {FaultySystemCalls::kPRead, FaultySystemCalls::kUringSubmit, FaultySystemCalls::kUringWaitCqe}) {
            SCOPED_TRACE("call " + std::to_string(call) + ", errno " + std::to_string(error));
            EXPECT_TRUE(RunOnce([&](FaultySystemCalls& ioCalls) { ioCalls.Fail(call, 1, error, 3); }).IsWhole());
        }
        SCOPED_TRACE("a completion, errno " + std::to_string(error));
        sCompletionErrno = error;
        EXPECT_TRUE(RunOnce([](FaultySystemCalls& ioCalls) {
                        ioCalls.Underlying().mUringWaitCqe = &WaitForFailedCompletion;
                    }).IsWhole());
        EXPECT_EQ(RefusalOfTheRing() == 0 ? 0 : error, sCompletionErrno) << "the ring has given it";
        sCompletionErrno = 0;
    }
}

// If the kernel refuses a submission permanently, the callbacks of the submitted reads report a failure.
TEST_P(AsyncReadFaults, KernelThatRefusesReads_FailsThemAtTheirStart)
{
    if (RefusalOfTheRing() != 0) {
        return; // without a ring nothing is submitted to the kernel
    }
    const RunResult run =
        RunOnce([](FaultySystemCalls& ioCalls) { ioCalls.Fail(FaultySystemCalls::kUringSubmit, 1, EIO); });
    ExpectRightAndNothingLost(run);
    EXPECT_FALSE(run.mDelivered.empty());
    EXPECT_FALSE(run.IsWhole());
}

TEST_P(AsyncReadFaults, ThreadsThatTheSystemRefuses_LeaveNothingStarted)
{
    const RunResult run =
        RunOnce([](FaultySystemCalls& ioCalls) { ioCalls.Fail(FaultySystemCalls::kCreateThread, 1, EAGAIN); });
    EXPECT_FALSE(run.mHasStarted);
    ExpectRightAndNothingLost(run);
    EXPECT_TRUE(RunOnce().IsWhole());
}

// If the kernel refuses the last packet, Terminate returns without waiting for the completion thread to end.
TEST_P(AsyncReadFaults, LastPacketThatTheSystemRefuses_IsReportedAndTheThreadEndsAllTheSame)
{
    if (RefusalOfTheRing() != 0) {
        return; // without a ring the packet does not reach the kernel
    }
    CheckRecorder recorder;
    {
        FaultySystemCalls calls;
        StartupAsyncFileOperations();
        calls.Fail(FaultySystemCalls::kUringSubmit, 1, EIO);
        TerminateAsyncFileOperations();
        WaitForProcessThreads(mThreads);
    }
    const std::vector<CheckReport> reports = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression("result");
    EXPECT_EQ(mFiles, CountOpenFiles());
}

// The kernel refuses both the last packet and the packet that should wake the completion thread. An eventfd that the
// ring polls wakes the thread instead. The kernel cancels the polls of a thread that exits, but this poll must
// outlive the thread that called StartupAsyncFileOperations.
TEST_P(AsyncReadFaults, EveryPacketThatTheSystemRefuses_LeavesNoThreadAsleep)
{
    if (RefusalOfTheRing() != 0) {
        return; // without a ring the packet does not reach the kernel
    }
    CheckRecorder recorder;
    {
        FaultySystemCalls calls;
        std::thread(&StartupAsyncFileOperations).join();
        RunResult run;
        Read(run);
        EXPECT_EQ(kReads, run.mDelivered.size());
        calls.Fail(FaultySystemCalls::kUringSubmit, 1, EIO, FaultySystemCalls::kForEver);
        TerminateAsyncFileOperations();
        WaitForProcessThreads(mThreads);
        EXPECT_EQ(1u, calls.Count(FaultySystemCalls::kRaiseEvent));
    }
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kAssert).size());
    EXPECT_EQ(mFiles, CountOpenFiles());
}
