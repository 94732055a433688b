// A host that starts and stops the library and uses it from static objects. The only argument is the mode; the host
// prints each step. With ORL_START_STATICALLY a static constructor starts the library before main.
#include <ORLFoundation.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string sMode;
std::string sProgram; // the host path of this program, an existing file

bool IsMode(const char* inMode)
{
    return sMode == inMode;
}

void PrintLine(const char* inText)
{
    std::printf("%s\n", inText);
    std::fflush(stdout);
}

void UseWithoutStart()
{
    const ORL::CriticalSectionLock lock(ORLGetGlobalCriticalSectionForSingletonConstruction());
    const ORL::CriticalSectionLock pooled(ORL::SharedObjectBase::GetCriticalSection());
    const ORL::ObjectPtr<int> number(new int(3));
    const ORL::ObjectPtr<int> copy(number);
    if (*copy != 3 || ORL::kPropertyKey_FrameRate.empty()) {
        std::abort();
    }
}

void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
            void* outBytesRead, void*, void*, int)
{
    *static_cast<unsigned int*>(outBytesRead) = inBytesRead;
}

void ReadAFile(void* outBuffer)
{
    ORL::AsyncFileReader reader;
    unsigned int bytesRead = 0;
    if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(sProgram), reader) != ORL::kSuccess) {
        std::abort();
    }
    reader.QueueReadRequest(0, 4096, outBuffer, &OnRead, &bytesRead, nullptr, nullptr);
    reader.WaitForPendingReads();
    if (bytesRead != 4096) {
        std::abort();
    }
}

// Runs several hosts in one process, which start and stop independently. Only one of their threads can be the main
// thread; the others fail a check, whose report is answered with "ignore".
void RunHostsAtOnce()
{
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool& ioIgnore, const char*, const unsigned char*, const char*, long, const char*) {
        ioIgnore = true;
        return false;
    };
    tvxcore::debug::InstallDialogs(dialogs);
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; ++host) {
        hosts.emplace_back([] {
            for (int round = 0; round < 100; ++round) {
                ORL::Foundation::Initialize();
                {
                    const ORL::MemoryBufferWrapper buffer(100000);
                    std::memset(buffer.GetBuffer(), round, buffer.GetSize());
                    ReadAFile(buffer.GetBuffer());
                }
                ORL::Foundation::Terminate();
            }
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
}

// The locks lie in an array, so their addresses show the order in which they are handed out.
void PrintPooledLockOrder()
{
    std::vector<ORL::CriticalSection*> given;
    for (int call = 0; call < 64; ++call) {
        given.push_back(&ORL::SharedObjectBase::GetCriticalSection());
    }
    std::vector<ORL::CriticalSection*> row(given);
    std::sort(row.begin(), row.end());
    std::rotate(row.begin(), row.begin() + 1, row.end());
    PrintLine(given == row ? "in rotation from entry 1" : "in another order");
}

/// Constructed before StartsAndStops, so destroyed after it.
struct UsesLate
{
    ~UsesLate()
    {
        if (IsMode("late-use")) {
            UseWithoutStart();
            PrintLine("used after the stop");
        }
    }
};

struct StartsAndStops
{
    StartsAndStops()
    {
#if defined(ORL_START_STATICALLY)
        UseWithoutStart();
        Start();
#endif
    }

    ~StartsAndStops()
    {
        if (mStarted && !IsMode("never-stopped")) {
            ORL::Foundation::Terminate();
            PrintLine("stopped");
        }
    }

    void Start()
    {
        ORL::Foundation::Initialize();
        mStarted = true;
        PrintLine("started");
    }

    bool mStarted = false;
};

UsesLate sUsesLate;
StartsAndStops sStartsAndStops;

} // namespace

int main(int argc, char** argv)
{
    sMode = argc > 1 ? argv[1] : "";
    sProgram = argv[0];
    if (IsMode("unmatched-stop")) {
        ORL::Foundation::Terminate();
    } else if (IsMode("hosts-at-once")) {
        RunHostsAtOnce();
    } else if (!sStartsAndStops.mStarted) {
        sStartsAndStops.Start();
    }
    if (IsMode("pooled-locks")) {
        PrintPooledLockOrder();
    }
    UseWithoutStart();
    PrintLine("main");
    return 0;
}
