// A host that reads the beginning of a file, given as a host path, and prints the engine it used.
#include <ORLFoundation.h>
#include <tvxcore/Trace.h>

#include <cstdio>
#include <new>

namespace {

constexpr unsigned kBlock = 65536;

void OnTrace(const unsigned char* inText)
{
    std::printf("%s", reinterpret_cast<const char*>(inText));
}

struct Outcome
{
    unsigned mBytesRead = 0;
    int mResult = -1;

    static void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* inOutcome, void*, void*, int inResult)
    {
        *static_cast<Outcome*>(inOutcome) = Outcome{inBytesRead, inResult};
    }
};

void ReadBeginning(const char* inHostPath)
{
    ORL::AsyncFileReader reader;
    Outcome outcome;
    void* const buffer = ::operator new(kBlock, std::align_val_t(4096));
    if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(inHostPath), reader) == ORL::kSuccess) {
        reader.QueueReadRequest(0, kBlock, buffer, &Outcome::OnRead, &outcome, nullptr, nullptr);
        reader.WaitForPendingReads();
    }
    unsigned sum = 0;
    for (unsigned i = 0; i < outcome.mBytesRead; ++i) {
        sum += static_cast<unsigned char*>(buffer)[i];
    }
    ::operator delete(buffer, std::align_val_t(4096));
    std::printf("result %d, %u bytes, sum %u\n", outcome.mResult, outcome.mBytesRead, sum);
}

} // namespace

int main(int argc, char** argv)
{
    tvxcore::debug::InstallTraceSink(&OnTrace);
    tvxcore::debug::SetTraceLevel("ORL.AsyncFileReader", 1);
    ORL::Foundation::Initialize();
    ReadBeginning(argc > 1 ? argv[1] : "");
    ORL::Foundation::Terminate();
    return 0;
}
