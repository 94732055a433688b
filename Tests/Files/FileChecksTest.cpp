// Tests the checks of File: their reports, and that a File stays usable if the caller continues after a report.
#include <FileSupport.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

struct Site
{
    int mLine;
    const char* mExpression;
    std::function<void(const TempFolder&)> mBreak;
};

const Site kContracts[] = {
    {__LINE__, "!IsOpen()",
     [](const TempFolder& folder) {
         Opened file(folder.Path(u"f"), kRead);
         EXPECT_EQ(kGeneralFailure, file.mFile.Create(folder.Path(u"f"), kRead, kShareEverything,
                                                      Disposition::kFileCreate_OpenExisting, kNormal, false));
         EXPECT_EQ("contents", ReadText(file.mFile, 100)) << "the file stays open";
     }},
    {__LINE__, "IsOpen()",
     [](const TempFolder&) {
         char byte = 0;
         unsigned count = 7;
         EXPECT_EQ(kGeneralFailure, File().Read(&byte, 1, count));
         EXPECT_EQ(0u, count);
     }},
    {__LINE__, "IsOpen()",
     [](const TempFolder&) {
         unsigned count = 7;
         EXPECT_EQ(kGeneralFailure, File().Write("x", 1, count));
         EXPECT_EQ(0u, count);
     }},
    {__LINE__, "IsOpen()",
     [](const TempFolder&) { EXPECT_EQ(kSuccess, File().SetFilePointer(0, Method::kFilePointer_Begin)); }},
    {__LINE__, "IsOpen()",
     [](const TempFolder&) {
         __int64 position = 77;
         EXPECT_EQ(kSuccess, File().GetFilePointer(position));
         EXPECT_EQ(77, position);
     }},
    {__LINE__, "IsOpen()", [](const TempFolder&) { EXPECT_EQ(-1, File().SetEndOfFile()); }},
    {__LINE__, "IsOpen()", [](const TempFolder&) { EXPECT_EQ(4294967295u, File().SizeOnDisk()); }},
    {__LINE__, "IsOpen()",
     [](const TempFolder&) {
         unsigned __int64 time = 77;
         EXPECT_EQ(kGeneralFailure, File().GetLastModificationTime(time));
         EXPECT_EQ(77u, time);
     }},
    {__LINE__, "!inTempPath.empty()",
     [](const TempFolder& folder) { EXPECT_EQ(kPathNotFound, File::SwapTempFile(UTF16String(), folder.Path(u"f"))); }},
    {__LINE__, "!inRealPath.empty()",
     [](const TempFolder& folder) { EXPECT_EQ(kPathNotFound, File::SwapTempFile(folder.Path(u"f"), UTF16String())); }},
};

} // namespace

TEST(FileChecks, EachContract_IsReportedAndSurvived)
{
    for (const Site& site : kContracts) {
        SCOPED_TRACE("row at line " + std::to_string(site.mLine));
        const TempFolder folder;
        folder.MakeFile("f", "contents");
        CheckRecorder recorder;
        site.mBreak(folder);
        const auto reports = recorder.Reports(CheckReport::kContract);
        ASSERT_EQ(1u, reports.size());
        ExpectReport(reports[0]).Expression(site.mExpression).File("WinFile");
        const auto errors = recorder.Reports(CheckReport::kError);
        ASSERT_EQ(1u, errors.size());
        ExpectReport(errors[0])
            .Expression(
                "$$$/tvxcore/utility/Error/Contract/InputContractViolation=An input contract violation has occurred!")
            .Line(25);
        EXPECT_EQ("contents", ContentsOf(folder, "f"));
    }
}

TEST(FileChecks, EachContract_LeavesAsItsError)
{
    for (const Site& site : kContracts) {
        const TempFolder folder;
        folder.MakeFile("f", "contents");
        CheckRecorder recorder;
        recorder.mThrow = true;
        EXPECT_THROW(site.mBreak(folder), CheckRecorder::ContractError) << site.mLine;
    }
}

TEST(FileChecks, ADirectoryPath_IsReportedUnlessItIsAllowed)
{
    const TempFolder folder;
    CheckRecorder recorder;
    EXPECT_EQ(
        kAccessDenied,
        Opened(folder.Path(), kRead, kShareEverything, Disposition::kFileCreate_OpenExisting, kNormal, true).mResult);
    EXPECT_EQ(0u, recorder.Reports().size());
    EXPECT_EQ(kAccessDenied, Opened(folder.Path(), kRead).mResult);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("!PathUtils::IsDirectory(inFullPath)")
        .Message("")
        .File("WinFile")
        .Function("ORL::File::Create");
}
