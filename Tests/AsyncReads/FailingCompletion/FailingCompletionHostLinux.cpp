#include "FailingCompletionHost.h"

#include "../AsyncEngines.h"

#include <FaultySystemCallsLinux.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <liburing.h>
#include <thread>

using ORLTest::FaultySystemCalls;

namespace FailingCompletion {

namespace {

// Never destroyed: library threads may still run when the process exits.
FaultySystemCalls& sCalls = *new FaultySystemCalls;
std::atomic<bool> sNextFails{false};

int WaitCqe(io_uring* ioRing, io_uring_cqe** outCompletion)
{
    const int error = ORL::Linux::kSystem.mUringWaitCqe(ioRing, outCompletion);
    if (error == 0 && sNextFails.exchange(false)) {
        (*outCompletion)->res = -EIO;
    }
    return error;
}

bool HasCompletionThread()
{
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string name;
        if (std::getline(file, name) && name == "ORL Async File ") {
            return true;
        }
    }
    return false;
}

} // namespace

void UseEngine(const std::string& inEngine)
{
    sCalls.Underlying().mUringWaitCqe = &WaitCqe;
    if (inEngine != "Ring") {
        sCalls.Fail(FaultySystemCalls::kUringQueueInit, 1, inEngine == "RingForbidden" ? EPERM : ENOSYS);
    }
}

std::uint64_t MakeNextReadFail(std::uint64_t)
{
    sCalls.Fail(FaultySystemCalls::kPRead, 1, EIO);
    sNextFails = true;
    return 0;
}

void AwaitEndOfCompletionThread()
{
    while (HasCompletionThread()) {
        std::this_thread::yield();
    }
}

} // namespace FailingCompletion
