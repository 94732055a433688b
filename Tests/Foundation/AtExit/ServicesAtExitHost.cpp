// Returns from main without calling Terminate while threads use every library service, and lets these threads continue
// until the process exits. The threads check every result, so a use of freed memory is detected even if it does not
// crash. The argument names one service, or "all".
#include "ServicesAtExitHost.h"

#include <CRV/Application.h>
#include <ORLFoundation.h>
#include <tvxcore/StringStream.h>
#include <tvxcore/Text.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace {

using namespace ORL;

constexpr int kThreads = 4;
constexpr int kRoundsToGoOn = 5;

std::atomic<int> sRounds[kThreads];
std::atomic<bool> sAreStarted{false};

[[noreturn]] void Fail(const char* inWhat)
{
    std::fprintf(stderr, "%s\n", inWhat);
    std::_Exit(1);
}

void Expect(bool inIsTrue, const char* inWhat)
{
    if (!inIsTrue) {
        Fail(inWhat);
    }
}

// ---- the services ----

void UseRecycler()
{
    const auto pool = MemoryRecycler::Instance();
    Expect(static_cast<bool>(pool), "the pool of buffers is gone");
    MemoryBufferWrapper large(20000);
    std::memset(large.GetBuffer(), 1, large.GetSize());
    MemoryBufferWrapper small(100);
    std::memset(small.GetBuffer(), 1, small.GetSize());
    Expect(pool->GetSize() < 100000000, "the size of the pool is nonsense");
}

constexpr Guid kClass(0x1122334455667788u, 0x8877665544332211u);
constexpr Guid kCategory(0x1020304050607080u, 0x8070605040302010u);

class Made : public UnknownImpl<ORLUnknown, ORLUnknown>
{
};

void MakeOne(InterfaceRef<ORLUnknown, ORLUnknown>& outRef)
{
    outRef = InterfaceRef<ORLUnknown, ORLUnknown>(new Made);
}

void CategoriesOfMade(std::vector<Guid>& outCategories)
{
    outCategories.push_back(kCategory);
}

void UseClassFactory()
{
    InterfaceRef<ORLUnknown, ORLUnknown> made;
    Expect(ClassFactory::CreateInstanceRef(kClass, made) == kSuccess && made, "the class is not made");
    Expect(ClassFactory::CreateClassByCategory(kCategory, 0, made) == kSuccess, "the category is not found");
    ClassMapEntry* const token = ClassFactory::GetClassTokenFromClassID(kClass);
    Expect(token != nullptr && ClassFactory::GetClassIDFromClassToken(token) == kClass, "the class has no token");
}

constexpr char kName[] = "a host whose name is longer than any text that is stored inside its object";

void UseApplication()
{
    Expect(std::strcmp(CRV::GetApplicationName(), kName) == 0, "the name of the host has changed");
    Expect(std::strcmp(CRV::GetApplicationVersion(), kName + 2) == 0, "the version of the host has changed");
}

void UseNames()
{
    const ImmutableString name = ImmutableString::CreateDynamic("a name that all threads enter and release");
    Expect(name.Compare("a name that all threads enter and release") == 0, "a name has lost its text");
}

void UseLocale()
{
    Expect(Locale::GetValueFromDisplayString(MakeString("2.5")) == 2.5, "2.5 is read as another number");
    Expect(Locale::Default() == std::locale::classic(), "the default locale is not the classic one");
    const std::locale users = Locale::Native();
    Expect(std::has_facet<std::numpunct<char>>(users), "the user's locale is gone");
    tvxcore::oUTF16StringStream stream;
    stream << 17;
    Expect(stream.str() == MakeString("17"), "a 16-bit stream does not write a number");
}

void UseErrorManager()
{
    static TVXErrorManager* const manager = new TVXErrorManager;
    try {
        manager->ThrowError(tvxcore::config::kErrorLevel_Error, "$$$/key=Text", 105, 25, false, {}, {}, {}, {});
        Fail("the error manager has thrown nothing");
    } catch (const TVXException& error) {
        Expect(std::strstr(error.what(), "Text") != nullptr, "an error has lost its text");
    }
    Expect(manager->ExecuteFunctionWithTopLevelExceptionHandler([] { return 17l; }) == 17, "a function is not run");
}

void UseThreadManager()
{
    const ConstString name = ThreadManager::GetCurrentThreadInfo()->GetThreadName();
    Expect(name == ConstString("Unnamed Thread"), "the record of unregistered threads has changed");
    Expect(!ThreadManager::CurrentThreadIsMainThread(), "a thread is taken for the main thread");
    ConstString registered("A thread");
    ConstString module("A module");
    std::thread([&] {
        ThreadManager::RegisterThread(registered, module);
        Expect(ThreadManager::GetCurrentThreadInfo()->GetThreadName() == registered, "a record is not found");
        ThreadManager::UnregisterThread();
    }).join();
}

class OpensGate : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit OpensGate(WaitableGate& inGate) : mGate(inGate) {}
    void Process() override { mGate.Open(); }

private:
    WaitableGate& mGate;
};

void UseQueueAndGate()
{
    const auto queue = SharedThreadedWorkQueue::Instance()->RetrieveOrCreate(ThreadPriorities::kNormal);
    WaitableGate* const gate = WaitableGatePool::RetrieveGate();
    Expect(gate != nullptr && gate->Wait(0) == kWaitTimeout, "the pool gives no closed gate");
    Expect(queue->QueueRequest(ThreadedWorkQueue::Request(new OpensGate(*gate))), "a queue has refused a request");
    Expect(gate->Wait(-1) == kSuccess, "a gate has not been passed");
    // The queue's thread may still be inside Open. The flush ensures that Open has returned before ReturnGate runs.
    static const auto* const flush = [] {
        auto* const made = new InterfaceRef<ThreadedWorkQueueFlush, ORLUnknown>(new ThreadedWorkQueueFlush);
        (*made)->Init(SharedThreadedWorkQueue::Instance()->RetrieveOrCreate(ThreadPriorities::kNormal));
        return made;
    }();
    (*flush)->Flush();
    WaitableGatePool::ReturnGate(gate);
}

const char* sThisProgram = nullptr;

struct ReadOutcome
{
    unsigned int mBytesRead = 0;
    int mResult = -1;

    static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* ioOutcome, void*, void*, int inResult)
    {
        *static_cast<ReadOutcome*>(ioOutcome) = ReadOutcome{inBytesRead, inResult};
    }
};

void UseAsyncReads()
{
    constexpr unsigned int kBlock = 65536;
    alignas(4096) static thread_local unsigned char sBlock[kBlock];
    AsyncFileReader reader;
    ReadOutcome outcome;
    Expect(AsyncFileReader::Open(PathUtils::FromHostPath(sThisProgram), reader) == kSuccess, "a file is not opened");
    reader.QueueReadRequest(0, kBlock, sBlock, &ReadOutcome::OnRead, &outcome, nullptr, nullptr);
    reader.WaitForPendingReads();
    Expect(outcome.mResult == kSuccess && outcome.mBytesRead != 0, "a file is not read");
}

void UsePathsAndConstants()
{
    const UTF16String path = PathUtils::FromHostPath(sThisProgram);
    Expect(PathUtils::ExistsOnDisk(path), "this program is not found on its disk");
    Expect(PathUtils::kIllegalFilenameCharactersDisplay == MakeString("\\ / : * ? \" < > |"),
           "a constant of the paths is gone");
    Expect(PathUtils::GetPathSeparator() == MakeString("\\"), "the separator is gone");
    Expect(kPropertyKey_AudioTrackCount == MakeString("audio.track.count"), "a property key is gone");
    Expect(kResType_DirectoryTable == MakeString("ORLDIRECTORYTABLE"), "a resource type is gone");
    Expect(!DiskUtils::MakeDiskSpaceString(123456789).empty(), "a size is not shown");
}

struct Service
{
    const char* mName;
    void (*mUse)();
};

constexpr Service kServices[] = {
    {"recycler", &UseRecycler},       {"classes", &UseClassFactory},
    {"application", &UseApplication}, {"names", &UseNames},
    {"locale", &UseLocale},           {"errors", &UseErrorManager},
    {"threads", &UseThreadManager},   {"queues", &UseQueueAndGate},
    {"reads", &UseAsyncReads},        {"constants", &UsePathsAndConstants},
};

// ---- the threads ----

// The thread that freed memory is the first to reuse it. Overwriting the freed memory makes any later reader of a
// destroyed object fail.
void OverwriteFreedMemory()
{
    constexpr std::size_t kLargest = 512;
    constexpr std::size_t kOfEach = 8;
    for (std::size_t size = 4; size <= kLargest; size += 4) {
        void* ofHeap[kOfEach];
        void* ofFront[kOfEach];
        for (std::size_t i = 0; i < kOfEach; ++i) {
            ofHeap[i] = std::memset(::operator new(size), 0xEE, size);
            ofFront[i] = std::memset(Allocator::Allocate(size), 0xEE, size);
        }
        for (std::size_t i = 0; i < kOfEach; ++i) {
            ::operator delete(ofHeap[i]);
            Allocator::Dispose(ofFront[i], size);
        }
    }
}

// Never returns. Each thread starts at a different service, so that all services are in use at any moment.
void UseServices(const char* inWhich, int inThread)
{
    for (std::size_t i = static_cast<std::size_t>(inThread);; ++i) {
        const Service& service = kServices[i % std::size(kServices)];
        if (std::strcmp(inWhich, "all") == 0 || std::strcmp(inWhich, service.mName) == 0) {
            service.mUse();
        }
        if (i % std::size(kServices) == 0) {
            OverwriteFreedMemory();
            ++sRounds[inThread];
        }
    }
}

} // namespace

void AtExit::WaitForThreadProgress()
{
    OverwriteFreedMemory();
    for (const std::atomic<int>& rounds : sRounds) {
        const int until = rounds.load() + kRoundsToGoOn;
        while (sAreStarted && rounds.load() < until) {
            std::this_thread::yield();
        }
    }
}

#if defined(__SANITIZE_THREAD__)
// Suppresses the reports of threads that still run at exit, and of facets that the C++ library caches under a lock that
// the sanitizer does not see.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_options()
{
    return "report_thread_leaks=0";
}

extern "C" [[gnu::visibility("default")]] const char* __tsan_default_suppressions()
{
    return "race:std::__use_cache\n";
}
#endif

int main(int argc, char** argv)
{
    if (argc != 2) {
        return 2;
    }
    AtExit::RunAfterLibraryDestructors();
    std::atexit(&AtExit::WaitForThreadProgress);
    sThisProgram = argv[0];
    CRV::SetApplicationName(kName);
    CRV::SetApplicationVersion(kName + 2);
    Foundation::Initialize();
    ClassFactory::RegisterORLClass(kClass, "Made", "Made", &MakeOne, &CategoriesOfMade);
    sAreStarted = true;
    const std::string* const which = new std::string(argv[1]); // the threads outlive main
    for (int i = 0; i < kThreads; ++i) {
        std::thread([which, i] { UseServices(which->c_str(), i); }).detach();
    }
    AtExit::WaitForThreadProgress();
    return 17;
}
