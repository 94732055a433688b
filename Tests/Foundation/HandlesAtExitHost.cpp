// Exits while its threads copy and release handles to names, buffers and queues, and read, compare, look up and add
// names. Further handles are in static storage.
#include <ORLFoundation.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using ORL::ImmutableString;

constexpr int kThreads = 4;

std::atomic<int> sRounds[kThreads];

// Constructed before ImmutableStringTable registers its exit handler, so it is destroyed after that handler runs.
ImmutableString sName;

struct Shared
{
    std::vector<std::string> mTexts;
    std::vector<ImmutableString> mNames;
    ORL::ObjectPtr<ORL::MemoryRecycler, ORL::AtomicValue> mRecycler = ORL::MemoryRecycler::Instance();
    bool mIsStopped = false; // threads do not use the pool while main releases it
    ORL::InterfaceRef<ORL::ThreadedWorkQueue> mQueue =
        ORL::SharedThreadedWorkQueue::Instance()->RetrieveOrCreateSingleThreaded(ORL::ThreadPriorities::kNormal);
};

[[noreturn]] void Fail(const char* inWhat)
{
    std::fprintf(stderr, "%s\n", inWhat);
    std::_Exit(1);
}

std::string TextOf(std::size_t inNumber)
{
    return "a name of some length, number " + std::to_string(inNumber);
}

// Checks that a held name is found again at the same address and can be read, and that new names can be added. UseNames
// must not use the system's heap: when Windows terminates the threads at process exit, a thread inside the heap leaves
// the heap lock held, and under Wine 8 the next free then waits forever.
void UseNames(const ImmutableString& inName, const std::string& inText, std::size_t inRound)
{
    if (inText != reinterpret_cast<const char*>(inName.c_str()) || inName.Compare(inText) != 0) {
        Fail("a name that is held has lost its text");
    }
    if (ImmutableString::CreateDynamic(inText).c_str() != inName.c_str()) {
        Fail("a name that is held is not found");
    }
    if (ImmutableString::CreateDynamic(std::to_string(inRound)).Compare(std::to_string(inRound)) != 0) {
        Fail("a new name is not entered");
    }
}

// Never returns.
void UseHandles(const Shared& inShared, std::atomic<int>& ioRounds)
{
    ImmutableString held;
    for (std::size_t i = 0;; ++i) {
        const std::size_t number = i % inShared.mNames.size();
        const ImmutableString copy = inShared.mNames[number];
        held = copy;
        UseNames(copy, inShared.mTexts[number], i);
        const auto recycler = inShared.mIsStopped ? inShared.mRecycler : ORL::MemoryRecycler::Instance();
        if (recycler.GetPtr() != inShared.mRecycler.GetPtr()) {
            Fail("the pool of buffers is another one");
        }
        const auto queue = inShared.mQueue;
        ++ioRounds;
    }
}

void WaitForThreadProgress()
{
    for (const std::atomic<int>& rounds : sRounds) {
        const int until = rounds.load() + 100;
        while (rounds.load() < until) {
            std::this_thread::yield();
        }
    }
}

void StartThreads(const Shared& inShared)
{
    for (std::atomic<int>& rounds : sRounds) {
        std::thread([&inShared, &rounds] { UseHandles(inShared, rounds); }).detach();
    }
    WaitForThreadProgress();
}

} // namespace

int main(int argc, char** argv)
{
    std::atexit(&WaitForThreadProgress); // runs after ImmutableStringTable's exit handler, which is registered later
    ORL::Foundation::Initialize();
    Shared* const shared = new Shared; // never deleted: the threads outlive main
    for (std::size_t i = 0; i < 100; ++i) {
        shared->mTexts.push_back(TextOf(i));
        shared->mNames.push_back(ImmutableString::CreateDynamic(shared->mTexts.back()));
    }
    sName = shared->mNames[0];
    shared->mIsStopped = argc > 1 && std::strcmp(argv[1], "stopped") == 0;
    StartThreads(*shared);
    if (shared->mIsStopped) {
        ORL::Foundation::Terminate();
    }
    return 17;
}
