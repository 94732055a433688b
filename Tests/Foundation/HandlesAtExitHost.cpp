// Ends while threads of its own copy and release handles of names, buffers and queues, and with handles in static storage.
#include <ORLFoundation.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using ORL::ImmutableString;

constexpr int kThreads = 4;

std::atomic<int> sRounds[kThreads];

// Goes after the table of names has gone, since it came before.
ImmutableString sName;

struct Shared
{
    std::vector<ImmutableString> mNames;
    ORL::ObjectPtr<ORL::MemoryRecycler, ORL::AtomicValue> mRecycler = ORL::MemoryRecycler::Instance();
    ORL::InterfaceRef<ORL::ThreadedWorkQueue> mQueue =
        ORL::SharedThreadedWorkQueue::Instance()->RetrieveOrCreateSingleThreaded(ORL::ThreadPriorities::kNormal);
};

// Never ends.
void CopyAndRelease(const Shared& inShared, std::atomic<int>& ioRounds)
{
    ImmutableString held;
    for (std::size_t i = 0;; ++i) {
        const ImmutableString copy = inShared.mNames[i % inShared.mNames.size()];
        held = copy;
        const auto recycler = inShared.mRecycler;
        const auto queue = inShared.mQueue;
        ++ioRounds;
    }
}

void StartThreads(const Shared& inShared)
{
    for (std::atomic<int>& rounds : sRounds) {
        std::thread([&inShared, &rounds] { CopyAndRelease(inShared, rounds); }).detach();
    }
    for (const std::atomic<int>& rounds : sRounds) {
        while (rounds.load() < 100) {
            std::this_thread::yield();
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    ORL::Foundation::Initialize();
    Shared* const shared = new Shared; // the threads outlive main
    for (int i = 0; i < 100; ++i) {
        shared->mNames.push_back(ImmutableString::CreateDynamic("a name of some length, number " + std::to_string(i)));
    }
    sName = shared->mNames[0];
    StartThreads(*shared);
    if (argc > 1 && std::strcmp(argv[1], "stopped") == 0) {
        ORL::Foundation::Terminate();
    }
    return 17;
}
