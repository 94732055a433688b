#include "AsyncEngines.h"

#include <FaultySystemCallsLinux.h>
#include <Files/AsyncFileReaderImpl.h>
#include <Platform/AsyncFiles.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace ORL;
using ORLTest::FaultySystemCalls;

namespace ORLTest {

namespace {

struct Refusal
{
    const char* mName;
    int mErrno; // 0: io_uring is available
    const char* mDescription;
};

constexpr Refusal kRefusals[] = {
    {"Ring", 0, "io_uring"},
    {"RingForbidden", EPERM, "pread threads, since the kernel forbids io_uring (EPERM)"},
    {"RingAbsent", ENOSYS, "pread threads, since the kernel has no io_uring (ENOSYS)"},
};

class LinuxEngine : public AsyncEngine
{
public:
    explicit LinuxEngine(int inErrno)
    {
        if (inErrno != 0) {
            mCalls.Fail(FaultySystemCalls::kUringQueueInit, 1, inErrno, FaultySystemCalls::kForEver);
        }
    }

private:
    FaultySystemCalls mCalls;
};

} // namespace

std::vector<std::string> AsyncEngineNames()
{
    std::vector<std::string> names;
    for (const Refusal& refusal : kRefusals) {
        names.emplace_back(refusal.mName);
    }
    return names;
}

std::unique_ptr<AsyncEngine> UseAsyncEngine(const std::string& inName)
{
    for (const Refusal& refusal : kRefusals) {
        if (inName == refusal.mName) {
            return std::make_unique<LinuxEngine>(refusal.mErrno);
        }
    }
    throw std::invalid_argument(inName);
}

} // namespace ORLTest

TEST(CompletionPort, EachRefusalOfTheRing_ChoosesThreadsAndSaysWhy)
{
    using namespace AsyncFiles::Platform;
    for (const ORLTest::Refusal& refusal : ORLTest::kRefusals) {
        const std::unique_ptr<ORLTest::AsyncEngine> engine = ORLTest::UseAsyncEngine(refusal.mName);
        Handle port = nullptr;
        ASSERT_EQ(0u, CreatePort_Impl(port));
        EXPECT_STREQ(refusal.mDescription, DescribePort_Impl(port));
        ClosePort_Impl(port);
    }
}

TEST(CompletionPort, RingWithoutMemory_ChoosesThreads)
{
    using namespace AsyncFiles::Platform;
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kUringQueueInit, 1, ENOMEM);
    Handle port = nullptr;
    ASSERT_EQ(0u, CreatePort_Impl(port));
    EXPECT_STREQ("pread threads, since the kernel has no memory for io_uring (ENOMEM)", DescribePort_Impl(port));
    ClosePort_Impl(port);
}
