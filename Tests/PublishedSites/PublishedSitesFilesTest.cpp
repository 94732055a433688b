// Tests the published identity, without line numbers, of the checks in path functions and asynchronous reads.
#include "PublishedSites.h"

#include <Files/AsyncFileReaderImpl.h>
#include <Files/AsyncReads/AsyncFileMachinery.h>
#include <Files/PathForms.h>
#include <ORLAsyncFileReader.h>
#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <memory>

using namespace ORL;
using namespace ORL::PathUtils;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

const UTF16String kEmpty;

// Fakes a temporary folder whose name is too long for any buffer.
unsigned long LongTempPath(unsigned long, unsigned short*)
{
    return 600;
}

/// Starts asynchronous reads; the destructor stops them.
struct Machinery
{
    Machinery() { StartupAsyncFileOperations(); }
    ~Machinery() { TerminateAsyncFileOperations(); }
};

void StartTwice()
{
    const Machinery machinery;
    StartupAsyncFileOperations();
}

// Starts asynchronous reads although a thread queue remains from an earlier start.
void StartBesideAQueueThatWasLeft()
{
    struct Queue
    {
        Queue()
        {
            AsyncFiles::sReadThreadQueue = tvxcore::threads::CreateAsyncThreadedExecutor(
                "left", 1, 3, boost::function<void()>(), boost::function<void()>());
        }
        ~Queue() { EXPECT_FALSE(AsyncFiles::sReadThreadQueue) << "the stop has let it go"; }
    } const left;
    const Machinery machinery;
}

void OpenTwice()
{
    const TempFolder folder;
    folder.MakeFile("clip.mov");
    const Machinery machinery;
    AsyncFileReader reader;
    AsyncFileReader::Open(folder.Path(u"clip.mov"), reader);
    AsyncFileReader::Open(folder.Path(u"clip.mov"), reader);
}

void OpenBeforeTheStart()
{
    AsyncFileReader reader;
    AsyncFileReader::Open(Units(u"C:\\clip.mov"), reader);
}

void QueueOnAClosedReader()
{
    AsyncFileReader reader;
    reader.QueueReadRequest(0, 512, nullptr, nullptr, nullptr, nullptr, nullptr);
}

void QueueAfterTheStop()
{
    const TempFolder folder;
    folder.MakeFile("clip.mov");
    AsyncFileReader reader;
    {
        const Machinery machinery;
        EXPECT_EQ(kSuccess, AsyncFileReader::Open(folder.Path(u"clip.mov"), reader));
    }
    EXPECT_EQ(-1, reader.QueueReadRequest(0, 512, nullptr, nullptr, nullptr, nullptr, nullptr));
    reader.Close(); // returns at once, because no read is pending
}

void FreeTwice()
{
    const auto pool = std::make_unique<AsyncReadRequests>();
    AsyncReadRequest* const request = pool->AllocateAsyncReadRequest();
    pool->FreeAsyncReadRequest(request);
    pool->FreeAsyncReadRequest(request);
}

void AddTwice()
{
    AsyncReadBusyRequests list;
    AsyncReadRequest request{};
    list.Add(&request);
    list.Add(&request);
}

void RemoveUnknown()
{
    AsyncReadBusyRequests list;
    AsyncReadRequest request{};
    list.Remove(&request);
}

const char* const kValid = "IsValidPath(inFullPath)";

const PublishedSite kPathSites[] = {
    {__LINE__, PublishedSite::kInputContract, kValid, "", "PathUtils", 0, "", [] { GetDrivePart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "PathUtils", 0, "", [] { GetDirectoryPart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "PathUtils", 0, "", [] { GetFilePart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "PathUtils", 0, "", [] { GetExtensionPart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "PathUtils", 0, "", [] { GetFullFilePart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "WinPathUtils", 0, "", [] { GetFullDirectoryPart(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "WinPathUtils", 0, "", [] { IsNormalizedPath(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, kValid, "", "WinPathUtils", 0, "", [] { IsDirectoryEmpty(kEmpty); }},
    {__LINE__, PublishedSite::kAssert, kValid, "", "WinPathUtils", 0, "ORL::PathUtils::ExistsOnDisk",
     [] { ExistsOnDisk(kEmpty); }},
    {__LINE__, PublishedSite::kAssert, kValid, "", "WinPathUtils", 0, "ORL::PathUtils::IsDirectory",
     [] { IsDirectory(kEmpty); }},
    {__LINE__, PublishedSite::kAssert, "HasTrailingSlash(inPath)", "", "WinPathUtils", 0,
     "ORL::PathUtils::PreparePathForWrite", [] { PreparePathForWrite(TempFolder().Path()); }},
    {__LINE__, PublishedSite::kAssert, "len <= kBufferLength", "", "WinPathUtils", 0, "ORL::PathUtils::MakePath",
     [] { MakePath(Units(u"C"), UTF16String(2048, 'd'), kEmpty, kEmpty); }},
    {__LINE__, PublishedSite::kAssert, "!\"Non-normative UNC path detected\"",
     "Path 'C:\\x' is not a normative UNC path\r\n", "WinPathUtils", 0, "ORL::PathUtils::Win::StripUNC",
     [] { PathUtils::Win::StripUNC(Units(u"C:\\x")); }},
    {__LINE__, PublishedSite::kAssert, "false", "Could not get the current temporary directory!", "WinPathUtils", 0,
     "ORL::PathUtils::GetTempDirectory", [] { GetTempDirectoryFrom(&LongTempPath); }},
};

const PublishedSite kReadSites[] = {
    // start and stop
    {__LINE__, PublishedSite::kInputContract, "sCompletionPort == NULL", "", nullptr, 0, "", &StartTwice},
    {__LINE__, PublishedSite::kAssert, "sReadThreadQueue == NULL", "", nullptr, 0, nullptr,
     &StartBesideAQueueThatWasLeft},
    {__LINE__, PublishedSite::kAssert, "result", "", nullptr, 0, nullptr, &TerminateAsyncFileOperations},
    // the reader; the check "request" in QueueReadRequest cannot fail, because the pool waits and never returns null
    {__LINE__, PublishedSite::kInputContract, "sCompletionPort != NULL && sCompletionPort != INVALID_HANDLE_VALUE", "",
     nullptr, 0, "", &OpenBeforeTheStart},
    {__LINE__, PublishedSite::kInputContract, "ioOpenedAsyncFileReader.mImpl->mFileHandle == INVALID_HANDLE_VALUE", "",
     nullptr, 0, "", &OpenTwice},
    {__LINE__, PublishedSite::kInputContract, "mImpl->mFileHandle != INVALID_HANDLE_VALUE", "", nullptr, 0, "",
     &QueueOnAClosedReader},
    {__LINE__, PublishedSite::kAssert, "sReadThreadQueue != NULL", "", nullptr, 0, nullptr, &QueueAfterTheStop},
    // records and the busy list
    {__LINE__, PublishedSite::kInputContract, "inRequest != NULL", "", nullptr, 0, "",
     [] { TheAsyncReadRequests().FreeAsyncReadRequest(nullptr); }},
    {__LINE__, PublishedSite::kAssert, "AtomicRead(allocRecord->mBusy) == 1", "", nullptr, 0,
     "ORL::AsyncReadRequestPool<struct _OVERLAPPED,2048>::FreeAsyncReadRequest", &FreeTwice},
    {__LINE__, PublishedSite::kInputContract, "mBusyList.find(inRequest) == mBusyList.end()", "", nullptr, 0, "",
     &AddTwice},
    {__LINE__, PublishedSite::kInputContract, "mBusyList.find(inRequest) != mBusyList.end()", "", nullptr, 0, "",
     &RemoveUnknown},
};

} // namespace

TEST(PublishedSites, OfPaths_AreReportedAsPublished)
{
    ExpectPublished(kPathSites);
}

TEST(PublishedSites, OfAsynchronousReads_AreReportedAsPublished)
{
    ExpectPublished(kReadSites);
}
