// Tests that ExpectReport passes for equal fields, and names the field that differs.
#include <ExpectReport.h>

#include <gtest/gtest-spi.h>

using ORLTest::CheckReport;
using ORLTest::ExpectReport;

namespace {

CheckReport ReportWithEveryField()
{
    CheckReport report{};
    report.mKind = CheckReport::kContract;
    report.mExpression = "a < b";
    report.mMessage = "text";
    report.mFile = "File";
    report.mLine = 12;
    report.mFunction = "ORL::Function";
    report.mPackage = 105;
    report.mLevel = 3;
    report.mFlag = true;
    return report;
}

} // namespace

TEST(ExpectReport, EqualFields_Pass)
{
    ExpectReport(ReportWithEveryField()).Kind(CheckReport::kContract).Expression("a < b").Message("text").File("File");
    ExpectReport(ReportWithEveryField()).Line(12).Function("ORL::Function").Package(105).Level(3).Flag(true);
}

TEST(ExpectReport, AFieldThatDiffers_FailsWithItsNameAndBothValues)
{
    static const CheckReport report = ReportWithEveryField();
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Kind(CheckReport::kAssert), "The kind of the report is");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Expression("b"),
                            "The expression of the report is \"a < b\", expected \"b\"");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Message(""), "The message of the report is \"text\", expected \"\"");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).File("file"), "The file of the report is \"File\", expected \"file\"");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Line(13), "The line of the report is 12, expected 13");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Function("F"), "The function of the report is");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Package(1), "The package of the report is 105, expected 1");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Level(4), "The level of the report is 3, expected 4");
    EXPECT_NONFATAL_FAILURE(ExpectReport(report).Flag(false), "The flag of the report is true, expected false");
}
