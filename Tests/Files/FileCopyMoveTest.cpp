// Tests deleting, copying and moving files by name.
#include "../AsyncReads/AsyncReadSupport.h"
#include <FileSupport.h>

#include <SystemProbes.h>

#include <ORLPathUtils.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

TEST(File, Delete_TakesExtendedAndPlainPaths)
{
    const TempFolder folder;
    folder.MakeFile("f");
    folder.MakeFile("g");
    EXPECT_EQ(kSuccess, File::Delete(folder.Path(u"f")));
    EXPECT_EQ(kSuccess, File::Delete(PathUtils::ToNormalizedPath(folder.Path(u"g"))));
    EXPECT_EQ(kFileNotFound, File::Delete(folder.Path(u"f")));
    EXPECT_EQ(kPathNotFound, File::Delete(folder.Path(u"no\\f")));
    EXPECT_EQ(kAccessDenied, File::Delete(folder.Path()));
}

TEST(File, Copy_BringsContentsAndTime)
{
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    folder.MakeFile("g", "a longer text that is there before");
    SetTimeTo2001(folder.Host() / "f");
    for (const char16_t* name : {u"g", u"new"}) {
        EXPECT_EQ(kSuccess, File::Copy(folder.Path(u"f"), folder.Path(name)));
        unsigned __int64 source = 0;
        unsigned __int64 copy = 1;
        EXPECT_EQ(kSuccess, File::GetLastModificationTime(folder.Path(u"f"), source));
        EXPECT_EQ(kSuccess, File::GetLastModificationTime(folder.Path(name), copy));
        EXPECT_EQ(source, copy);
    }
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
    EXPECT_EQ("hello", ContentsOf(folder, "new"));
    EXPECT_EQ(kFileNotFound, File::Copy(folder.Path(u"none"), folder.Path(u"n")));
    EXPECT_EQ(kPathNotFound, File::Copy(folder.Path(u"f"), folder.Path(u"no\\n")));
}

TEST(File, Move_RenamesFilesAndDirectories)
{
    const TempFolder folder;
    folder.MakeFile("f", "hello");
    folder.MakeFile("d/inside", "deep");
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"f"), folder.Path(u"g")));
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
    folder.MakeFolder("d");
    folder.MakeFile("d/inside", "deep");
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"d"), folder.Path(u"e")));
    EXPECT_EQ("deep", ContentsOf(folder, "e/inside"));
    EXPECT_EQ(kAlreadyExists, File::Move(folder.Path(u"g"), folder.Path(u"e")));
    EXPECT_EQ(kFileNotFound, File::Move(folder.Path(u"none"), folder.Path(u"n")));
    EXPECT_EQ("hello", ContentsOf(folder, "g"));
}

namespace {

struct ProgressReport
{
    std::vector<float> mParts;
    std::size_t mStopsAt = ~std::size_t{0};

    static bool OnProgress(float inPart, void* ioReport)
    {
        ProgressReport& report = *static_cast<ProgressReport*>(ioReport);
        report.mParts.push_back(inPart);
        return report.mParts.size() <= report.mStopsAt;
    }
};

} // namespace

TEST(File, CopyWithProgress_TellsFrom0To1)
{
    const TempFolder folder;
    const std::string contents = MakeContents((std::size_t{9} << 20) + 123);
    folder.MakeFile("f", contents);
    ProgressReport report;
    EXPECT_EQ(kSuccess,
              File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"g"), &ProgressReport::OnProgress, &report));
    EXPECT_TRUE(contents == ContentsOf(folder, "g"));
    if (!SystemReportsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    ASSERT_LE(3u, report.mParts.size());
    EXPECT_EQ(0.0f, report.mParts.front());
    EXPECT_EQ(1.0f, report.mParts.back());
    EXPECT_TRUE(std::is_sorted(report.mParts.begin(), report.mParts.end()));
}

TEST(File, CopyWithProgressOfAnEmptyFile_TellsNoNumber)
{
    const TempFolder folder;
    folder.MakeFile("f", "");
    ProgressReport report;
    EXPECT_EQ(kSuccess,
              File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"g"), &ProgressReport::OnProgress, &report));
    EXPECT_EQ("", ContentsOf(folder, "g"));
    if (!SystemReportsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    ASSERT_LE(1u, report.mParts.size());
    EXPECT_TRUE(std::isnan(report.mParts[0]));
}

TEST(File, CopyWithProgressThatIsStopped_IsAbortedAndLeavesNothing)
{
    if (!SystemReportsCopyProgress()) {
        GTEST_SKIP() << "this system does not tell the progress of a copy";
    }
    const TempFolder folder;
    folder.MakeFile("f", MakeContents(std::size_t{9} << 20));
    folder.MakeFile("empty", "");
    for (const char16_t* source : {u"f", u"empty"}) {
        for (std::size_t stop = 0; stop < 2; ++stop) {
            if (stop == 1 && source[0] == u'e') {
                continue;
            }
            ProgressReport report;
            report.mStopsAt = stop;
            EXPECT_EQ(kOperationAborted, File::CopyWithProgress(folder.Path(source), folder.Path(u"g"),
                                                                &ProgressReport::OnProgress, &report));
            EXPECT_EQ(stop + 1, report.mParts.size());
            EXPECT_EQ("<none>", ContentsOf(folder, "g"));
        }
    }
}

// CopyWithProgress maps only a few system errors to their own results; it reports every other error as a full disk.
TEST(File, CopyWithProgressThatFails_HasATableOfItsOwn)
{
    const TempFolder folder;
    folder.MakeFile("f", "x");
    folder.MakeFile("g", "y");
    folder.MakeFolder("d");
    ProgressReport report;
    const auto copy = [&](const char16_t* inSource, const char16_t* inDestination) {
        return File::CopyWithProgress(folder.Path(inSource), folder.Path(inDestination), &ProgressReport::OnProgress,
                                      &report);
    };
    EXPECT_EQ(kFileNotFound, copy(u"none", u"n"));
    EXPECT_EQ(kPathNotFound, copy(u"f", u"no\\n"));
    EXPECT_EQ(kAccessDenied, copy(u"f", u"d"));
    const Opened held(folder.Path(u"g"), kRead, kShareNone);
    EXPECT_EQ(kDiskFull, copy(u"f", u"g")) << "a sharing violation is not listed";
    EXPECT_EQ(kDiskFull, copy(u"f", u"a*")) << "nor is an invalid name";
    EXPECT_EQ(0u, report.mParts.size());
}
