// A plug-in that uses the library like a host, for the host that loads and unloads both. Everything that starts on
// first use must be gone after the unload.
#include <CRV/Application.h>
#include <ORLFoundation.h>

#if defined(_WIN32)
#  define MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#  define MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using ORL::WaitableGate;

class OpensGate : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    explicit OpensGate(WaitableGate& inGate) : mGate(inGate) {}
    void Process() override { mGate.Open(); }

private:
    WaitableGate& mGate;
};

bool UseNames()
{
    const ORL::ImmutableString first = ORL::ImmutableString::CreateDynamic("a name of some length, of the plug-in");
    const ORL::ImmutableString second = ORL::ImmutableString::CreateDynamic("a name of some length, of the plug-in");
    return first.c_str() == second.c_str();
}

void MakeNothing(ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>&)
{
}

void CategoriesOfNothing(std::vector<ORL::Guid>& outCategories)
{
    outCategories.push_back(ORL::Guid(17, 18));
}

// Uses objects that live as long as the process, or until the library is unloaded.
bool UseProcessLifetimeObjects()
{
    CRV::SetApplicationName("a host of some name");
    for (std::uint64_t i = 1; i <= 20; ++i) {
        ORL::ClassFactory::RegisterORLClass(ORL::Guid(i, i), "Nothing", "Nothing", &MakeNothing, &CategoriesOfNothing);
    }
    return ORL::ClassFactory::GetClassTokenFromClassID(ORL::Guid(20, 20)) != nullptr
           && ORL::Locale::GetValueFromDisplayString(ORL::MakeString("2.5")) == 2.5
           && !ORL::ThreadManager::GetCurrentThreadInfo()->GetThreadName().empty();
}

// The caller owns the gate and keeps it until the library has stopped, because the queue's thread may still be inside
// Open when Wait returns.
bool UseSharedQueueAndGate(WaitableGate& ioGate)
{
    const auto queue =
        ORL::SharedThreadedWorkQueue::Instance()->RetrieveOrCreateSingleThreaded(ORL::ThreadPriorities::kNormal);
    return queue->QueueRequest(ORL::ThreadedWorkQueue::Request(new OpensGate(ioGate)))
           && ioGate.Wait(-1) == ORL::kSuccess;
}

struct Outcome
{
    unsigned int mBytesRead = 0;
    int mResult = -1;

    static void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* inOutcome, void*, void*, int inResult)
    {
        *static_cast<Outcome*>(inOutcome) = Outcome{inBytesRead, inResult};
    }
};

bool ReadBeginning(const char* inHostPath)
{
    constexpr unsigned int kBlock = 65536;
    ORL::MemoryBufferWrapper buffer(kBlock);
    ORL::AsyncFileReader reader;
    Outcome outcome;
    if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(inHostPath), reader) != ORL::kSuccess) {
        return false;
    }
    reader.QueueReadRequest(0, kBlock, buffer.GetBuffer(), &Outcome::OnRead, &outcome, nullptr, nullptr);
    reader.WaitForPendingReads();
    return outcome.mResult == ORL::kSuccess && outcome.mBytesRead != 0;
}

const char* UseAll(const char* inHostPath, WaitableGate& ioGate)
{
    if (!UseNames()) {
        return "one name has two records";
    }
    if (!UseProcessLifetimeObjects()) {
        return "a class, a number or a record is not found";
    }
    if (!UseSharedQueueAndGate(ioGate)) {
        return "a shared queue has not run its request";
    }
    return ReadBeginning(inHostPath) ? nullptr : "a file has not been read";
}

} // namespace

/// Starts the library, uses it and stops it. Returns null on success, else a description of the failure.
MODULE_EXPORT const char* UseTheLibrary(const char* inHostPath)
{
    WaitableGate gate;
    ORL::Foundation::Initialize();
    const char* const failure = UseAll(inHostPath, gate);
    ORL::Foundation::Terminate();
    return failure;
}
