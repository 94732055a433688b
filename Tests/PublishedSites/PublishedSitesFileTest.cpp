// Tests the published identity of the checks in File, which includes no line numbers.
#include "PublishedSites.h"

#include <BlockCacheSupport.h>
#include <ORLFile.h>

using namespace ORL;
using namespace ORLTest;

namespace {

// A file that is open during the lifetime of this object, and its folder.
struct OpenClip
{
    OpenClip() { mFolder.MakeFile("f", "x"); }

    Result Open() { return File::Open(mFolder.Path(u"f"), kRead, mFile); }

    TempFolder mFolder;
    File mFile;
};

void SeekByNoMethod()
{
    OpenClip clip;
    BufferLog log;
    const ScopedBlockCache factory([&log] { return BufferRef(new RecordingBuffer(log)); });
    EXPECT_EQ(kSuccess, clip.mFile.Create(clip.mFolder.Path(u"f"), kRead, kShareReaders,
                                          Disposition::kFileCreate_OpenExisting, kNormal, false));
    clip.mFile.SetFilePointer(0, static_cast<Method::Type>(3));
    clip.mFile.Close();
}

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kInputContract, "!IsOpen()", "", "WinFile", 0, "",
     [] {
         OpenClip clip;
         clip.Open();
         clip.Open();
     }},
    {__LINE__, PublishedSite::kAssert, "!PathUtils::IsDirectory(inFullPath)", "", "WinFile", 0, "ORL::File::Create",
     [] {
         const TempFolder folder;
         File file;
         File::Open(folder.Path(), kRead, file);
     }},
    {__LINE__, PublishedSite::kAssert, "false", "", "WinFile", 0, "ORL::File::SetFilePointer", &SeekByNoMethod},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "",
     [] {
         unsigned count = 0;
         File().Read(&count, 1, count);
     }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "",
     [] {
         unsigned count = 0;
         File().Write("x", 1, count);
     }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "",
     [] { File().SetFilePointer(0, Method::kFilePointer_Begin); }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "",
     [] {
         __int64 position = 0;
         File().GetFilePointer(position);
     }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "", [] { File().SetEndOfFile(); }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "", [] { File().SizeOnDisk(); }},
    {__LINE__, PublishedSite::kInputContract, "IsOpen()", "", "WinFile", 0, "",
     [] {
         unsigned __int64 time = 0;
         File().GetLastModificationTime(time);
     }},
    {__LINE__, PublishedSite::kInputContract, "!inTempPath.empty()", "", "WinFile", 0, "",
     [] { File::SwapTempFile(UTF16String(), Units(u"C:\\f")); }},
    {__LINE__, PublishedSite::kInputContract, "!inRealPath.empty()", "", "WinFile", 0, "",
     [] { File::SwapTempFile(Units(u"C:\\f"), UTF16String()); }},
};

} // namespace

TEST(PublishedSites, OfFile_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
