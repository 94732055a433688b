// A host in which one read fails when it completes. Arguments: the engine, the final action, the host path of a file.
//   wait   wait for the reads that will never be reported
//   stop   stop the library
#include "FailingCompletionHost.h"

#include <Files/AsyncFileReaderImpl.h>
#include <ORLAsyncFileReader.h>
#include <ORLHostPath.h>
#include <ORLResult.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr unsigned kBlock = 65536;

int sDelivered = 0; // written by the completion thread, read after waits

void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int, void*, void*, void*, void*, int)
{
    ++sDelivered;
}

void PrintLine(const char* inText)
{
    std::printf("%s\n", inText);
    std::fflush(stdout);
}

// Reader and buffer are leaked: Close would wait for the lost reads, and the kernel may still write to the buffer.
ORL::AsyncFileReader* sReader = new ORL::AsyncFileReader;
void* sBuffer = ::operator new(kBlock, std::align_val_t(4096));

void QueueAt(std::uint64_t inPosition)
{
    sReader->QueueReadRequest(inPosition, kBlock, sBuffer, &OnRead, nullptr, nullptr, nullptr);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        return 2;
    }
    FailingCompletion::UseEngine(argv[1]);
    ORL::StartupAsyncFileOperations();
    if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(argv[3]), *sReader) != ORL::kSuccess) {
        return 1;
    }
    QueueAt(0);
    sReader->WaitForPendingReads();
    PrintLine(sDelivered == 1 ? "delivered" : "lost");

    QueueAt(FailingCompletion::MakeNextReadFail(kBlock));
    FailingCompletion::AwaitEndOfCompletionThread();
    PrintLine("completion thread ended");
    QueueAt(0);
    if (std::strcmp(argv[2], "wait") == 0) {
        PrintLine("waiting");
        sReader->WaitForPendingReads();
        PrintLine("returned");
    } else {
        ORL::TerminateAsyncFileOperations();
        PrintLine(sDelivered == 1 ? "stopped, nothing further delivered" : "stopped, more was delivered");
    }
    return 0;
}
