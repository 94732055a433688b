#include "FailingCompletionHost.h"

#include <ProcessThreads.h>

namespace FailingCompletion {

namespace {

unsigned int sThreads = 0;

} // namespace

void UseEngine(const std::string&)
{
}

// A read past the end is accepted and fails when it completes.
std::uint64_t MakeNextReadFail(std::uint64_t inFileSize)
{
    sThreads = ORLTest::CountProcessThreads();
    return inFileSize;
}

void AwaitEndOfCompletionThread()
{
    ORLTest::WaitForProcessThreads(sThreads - 1);
}

} // namespace FailingCompletion
