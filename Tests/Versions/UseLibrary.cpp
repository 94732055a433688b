#include "UseLibrary.h"

#include <CRV/Application.h>
#include <ORLFoundation.h>

#include <atomic>
#include <cstdio>
#include <string>

namespace Versions {

namespace {

constexpr unsigned int kRequests = 200;
constexpr unsigned int kBlock = 65536;

constexpr char kParentKey[] = "Software\\Zerin\\TwoVersions";

using Queue = ORL::InterfaceRef<ORL::ThreadedWorkQueue, ORL::ORLUnknown>;

class Counts : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    Counts(const Queue& inQueue, std::atomic<unsigned int>& ioCount) : mQueue(inQueue), mCount(ioCount) {}
    void Process() override { mCount += mQueue->CurrentThreadIsQueueThread() ? 1u : 0u; }

private:
    Queue mQueue;
    std::atomic<unsigned int>& mCount;
};

unsigned int RunRequests(const char* inName)
{
    std::atomic<unsigned int> count{0};
    const Queue queue(new ORL::ThreadedWorkQueue);
    queue->Initialize(ORL::ThreadPriorities::kNormal, 3, ORL::ConstString("Versions"), ORL::ConstString(inName));
    const ORL::InterfaceRef<ORL::ThreadedWorkQueueFlush, ORL::ORLUnknown> flush(new ORL::ThreadedWorkQueueFlush);
    flush->Init(queue);
    for (unsigned int i = 0; i < kRequests; ++i) {
        queue->QueueRequest(ORL::ThreadedWorkQueue::Request(new Counts(queue, count)));
    }
    flush->Flush();
    queue->Stop();
    return count;
}

void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*, void* ioBytes,
            void*, void*, int inResult)
{
    if (inResult == ORL::kSuccess) {
        *static_cast<std::atomic<unsigned int>*>(ioBytes) += inBytesRead;
    }
}

unsigned int ReadAll(const char* inFile)
{
    std::atomic<unsigned int> bytes{0};
    ORL::MemoryBufferWrapper first(kBlock);
    ORL::MemoryBufferWrapper second(kBlock);
    ORL::AsyncFileReader reader;
    if (ORL::AsyncFileReader::Open(ORL::PathUtils::FromHostPath(inFile), reader) == ORL::kSuccess) {
        reader.QueueReadRequest(0, kBlock, first.GetBuffer(), &OnRead, &bytes, nullptr, nullptr);
        reader.QueueReadRequest(kBlock, kBlock, second.GetBuffer(), &OnRead, &bytes, nullptr, nullptr);
        reader.WaitForPendingReads();
    }
    return bytes;
}

// Each user writes its name to a key of its own.
std::string WriteAndReadSetting(const char* inName)
{
    const UTF16String path = ORL::MakeString(std::string(kParentKey) + "\\" + inName);
    const UTF16String value = ORL::MakeString("Name");
    std::string read;
    {
        ORL::RegistryKey key;
        if (!ORL::ResultSucceeded(key.Create(ORL::RegistryRootKeys::kUser, path))
            || key.SetStringValue(value, std::string(inName)) != ORL::kSuccess) {
            return "not written";
        }
        key.GetStringValue(value, read);
    }
    ORL::RegistryKey parent;
    const ORL::Result opened = parent.Create(ORL::RegistryRootKeys::kUser, ORL::MakeString(kParentKey));
    const ORL::Result deleted = parent.DeleteSubKey(ORL::MakeString(inName));
    if (!ORL::ResultSucceeded(opened) || deleted != ORL::kSuccess) {
        return "not deleted: " + std::to_string(opened) + ", " + std::to_string(deleted);
    }
    return read;
}

// The library throws, and its user catches by a base class.
unsigned int CatchException()
{
    try {
        ORL::Directory::ConstructDirectory(ORL::MakeString("C:\\no such folder\\of this name"));
    } catch (const ORL::Exception&) {
        return 1;
    }
    return 0;
}

std::string LibraryPath()
{
    UTF16String path;
    ORL::GetLibraryModule()->GetPath(path);
    return ORL::MakeStdString(path);
}

template <std::size_t size>
void Copy(char (&outText)[size], const std::string& inText)
{
    std::snprintf(outText, size, "%s", inText.c_str());
}

void Fill(const char* inFile, const char* inName, Report& outReport)
{
    static const ORL::ImmutableString sText = ORL::ImmutableString::CreateDynamic("a text that both users intern");
    Copy(outReport.mLibrary, LibraryPath());
    Copy(outReport.mApplication, CRV::GetApplicationName());
    Copy(outReport.mSetting, WriteAndReadSetting(inName));
    outReport.mRecord = reinterpret_cast<const char*>(sText.c_str());
    ORL::ParamColor<unsigned long> safe;
    ORL::MakeRGBWebSafe(ORL::ParamColor<unsigned long>(0x123456), safe);
    outReport.mSafeColor = safe.GetValue();
    outReport.mLanguage = ORL::GetLanguageID();
    outReport.mBytesRead = ReadAll(inFile);
    outReport.mRequests = RunRequests(inName);
    outReport.mCaught = CatchException();
}

} // namespace

void Start(const char* inName, unsigned short inLanguage)
{
    ORL::Foundation::Initialize();
    CRV::SetApplicationName(inName);
    ORL::SetLanguageID(inLanguage);
}

void Use(const char* inFile, const char* inName, Report& outReport)
{
    outReport = Report();
    try {
        Fill(inFile, inName, outReport);
    } catch (...) {
        Copy(outReport.mFailure, std::string(inName) + ": an exception was not caught");
    }
}

void Stop()
{
    ORL::Foundation::Terminate();
}

} // namespace Versions
