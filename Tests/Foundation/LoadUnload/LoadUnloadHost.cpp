// Repeatedly loads the library, starts it, uses it, stops it and unloads it, directly and through a plug-in that is
// linked to it. Compares the resources of the process after the first rounds with those at the end. The only argument
// is the mode.
#include "LoadUnloadHost.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <thread>

using namespace LoadUnload;

namespace {

constexpr int kRounds = 120;
constexpr int kSettled = 20; // rounds until all one-time buffers of the system's libraries exist
[[maybe_unused]] constexpr std::size_t kNoise = 192 << 10; // allowed: more than a heap extension, half a page a round

[[noreturn]] void Fail(const char* inWhat, int inRound)
{
    std::fprintf(stderr, "round %d: %s\n", inRound, inWhat);
    std::exit(1);
}

struct Library
{
    void* mHandle;
    void (*mInitialize)();
    void (*mTerminate)();
    void* (*mAllocate)(std::size_t);
    void (*mDispose)(void*, std::size_t);
};

template <class Function>
void FindFunction(Function& outFunction, void* inLibrary, const char* inName, int inRound)
{
    void* const address = Find(inLibrary, inName);
    if (address == nullptr) {
        Fail(inName, inRound);
    }
    std::memcpy(&outFunction, &address, sizeof(address));
}

Library LoadOurs(int inRound)
{
    Library library{};
    library.mHandle = Load(ORL_LIBRARY_FILE);
    if (library.mHandle == nullptr) {
        Fail("cannot load", inRound);
    }
    FindFunction(library.mInitialize, library.mHandle, "_ZN3ORL10Foundation10InitializeEv", inRound);
    FindFunction(library.mTerminate, library.mHandle, "_ZN3ORL10Foundation9TerminateEv", inRound);
    FindFunction(library.mAllocate, library.mHandle,
                 sizeof(long) == 8 ? "_ZN3ORL9Allocator8AllocateEm" : "_ZN3ORL9Allocator8AllocateEy", inRound);
    FindFunction(library.mDispose, library.mHandle,
                 sizeof(long) == 8 ? "_ZN3ORL9Allocator7DisposeEPvm" : "_ZN3ORL9Allocator7DisposeEPvy", inRound);
    return library;
}

void UnloadOurs(const Library& inLibrary, int inRound)
{
    if (!Unload(inLibrary.mHandle)) {
        Fail("cannot unload", inRound);
    }
}

void UseSmallBlocks(const Library& inLibrary)
{
    for (std::size_t size = 1; size < 5000; size += 97) {
        void* const block = inLibrary.mAllocate(size);
        std::memset(block, 1, size);
        inLibrary.mDispose(block, size);
    }
}

// Loading the plug-in loads the library, and unloading it unloads the library.
void RunPlugIn(const char* inFileToRead, int inRound)
{
    void* const plugIn = Load(ORL_MODULE_FILE);
    if (plugIn == nullptr) {
        Fail("cannot load the plug-in", inRound);
    }
    const char* (*use)(const char*) = nullptr;
    FindFunction(use, plugIn, "UseTheLibrary", inRound);
    if (const char* const failure = use(inFileToRead)) {
        Fail(failure, inRound);
    }
    if (!Unload(plugIn)) {
        Fail("cannot unload the plug-in", inRound);
    }
    if (IsAnyOfOursLoaded()) {
        Fail("a library of ours stayed loaded behind the plug-in", inRound);
    }
}

void RunOneRound(int inRound)
{
    const Library library = LoadOurs(inRound);
    library.mInitialize();
    UseSmallBlocks(library);
    std::thread([&] { UseSmallBlocks(library); }).join();
    library.mTerminate();
    UnloadOurs(library, inRound);
    if (IsAnyOfOursLoaded()) {
        Fail("a library of ours stayed loaded", inRound);
    }
}

void ExpectNoGrowth(const char* inWhat, std::size_t inBefore, std::size_t inAfter, std::size_t inAllowed)
{
    std::printf("%s: %zu, then %zu\n", inWhat, inBefore, inAfter);
    if (inAfter > inBefore + inAllowed) {
        Fail(inWhat, kRounds);
    }
}

void RunRounds(const char* inFileToRead)
{
    Footprint settled;
    for (int round = 0; round < kRounds; ++round) {
        RunOneRound(round);
        RunPlugIn(inFileToRead, round);
        if (round == kSettled) {
            settled = Measure();
        }
    }
    const Footprint end = Measure();
#if !defined(ORL_SANITIZED) // a sanitizer keeps freed memory
    ExpectNoGrowth("memory", settled.mMemory, end.mMemory, kNoise);
    ExpectNoGrowth("mappings", settled.mMappings, end.mMappings, 2);
#endif
    ExpectNoGrowth("threads", settled.mThreads, end.mThreads, 0);
    ExpectNoGrowth("handles", settled.mHandles, end.mHandles, 0);
}

// A thread that has used the library ends after the library has been unloaded.
void RunThreadThatOutlivesTheLibrary(int inRound)
{
    const Library library = LoadOurs(inRound);
    library.mInitialize();
    std::promise<void> used, unloaded;
    std::thread worker([&] {
        UseSmallBlocks(library);
        used.set_value();
        unloaded.get_future().wait();
    });
    used.get_future().wait();
    library.mTerminate();
    UnloadOurs(library, inRound);
    unloaded.set_value();
    worker.join();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "thread") == 0) {
        for (int round = 0; round < 10; ++round) {
            RunThreadThatOutlivesTheLibrary(round);
        }
    } else {
        RunRounds(argv[0]);
    }
    return 0;
}
