#include <ORLDebug.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <string>
#include <thread>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::CheckReport;
using ORLTest::ExpectReport;

namespace {

const char kInputText[] =
    "$$$/tvxcore/utility/Error/Contract/InputContractViolation=An input contract violation has occurred!";
const char kOutputText[] =
    "$$$/tvxcore/utility/Error/Contract/OutputContractViolation=An output contract violation has occurred!";

// Valid addresses for the address checks; nothing reads the bytes.
char sBytes[2];

void ExpectContractError(const CheckReport& inReport, const char* inText, long inErrorID)
{
    ExpectReport(inReport)
        .Kind(CheckReport::kError)
        .Expression(inText)
        .Package(105u)
        .Line(inErrorID)
        .Level(0)
        .Flag(true);
    // The four replacement values are empty and compare equal, so the test compares their addresses.
    const std::set<const void*> values(inReport.mValues.begin(), inReport.mValues.end());
    EXPECT_EQ(4u, values.size());
    EXPECT_EQ(0u, values.count(nullptr));
}

} // namespace

TEST(IsValidAddress, NullAddress_IsValidOnlyWhereNullIsAllowed)
{
    EXPECT_TRUE(IsValidAddress(nullptr, true));
    EXPECT_FALSE(IsValidAddress(nullptr, false));
    EXPECT_TRUE(IsValidAddress(sBytes, true));
    EXPECT_TRUE(IsValidAddress(sBytes, false));
}

TEST(IsValidAddressRange, WithASize_LooksAtTheAddressAlone)
{
    EXPECT_TRUE(IsValidAddressRange(sBytes, std::size_t{0}, false));
    EXPECT_TRUE(IsValidAddressRange(sBytes, ~std::size_t{0}, false));
    EXPECT_TRUE(IsValidAddressRange(nullptr, std::size_t{8}, true));
    EXPECT_FALSE(IsValidAddressRange(nullptr, std::size_t{0}, false));
}

TEST(IsValidAddressRange, NullToNullWhereNullIsAllowed_IsValidAndRaisesNothing)
{
    CheckRecorder recorder;
    EXPECT_TRUE(IsValidAddressRange(nullptr, nullptr, true));
    EXPECT_TRUE(IsValidAddressRange(nullptr, sBytes, true));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(IsValidAddressRange, NullBeginWhereNullIsNotAllowed_IsFalseAndRaisesNothing)
{
    CheckRecorder recorder;
    EXPECT_FALSE(IsValidAddressRange(nullptr, sBytes, false));
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(IsValidAddressRange, EmptyRange_FiresTheInputContractAndIsTrueWhenThatComesBack)
{
    CheckRecorder recorder;
    EXPECT_TRUE(IsValidAddressRange(sBytes, static_cast<const void*>(sBytes), false));
    const auto reports = recorder.Reports();
    ASSERT_EQ(2u, reports.size());
    ExpectReport(reports[0]).Kind(CheckReport::kContract).Expression("inBegin < inEnd").File("Debug").Line(61);
    ExpectContractError(reports[1], kInputText, 25);
}

TEST(IsValidAddressRange, EmptyRangeWithAnErrorManagerThatThrows_LeavesByException)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    EXPECT_THROW(IsValidAddressRange(sBytes, static_cast<const void*>(sBytes), false), CheckRecorder::ContractError);
}

TEST(IsValidAddressRange, BackwardRange_FiresTheInputContract)
{
    CheckRecorder recorder;
    EXPECT_TRUE(IsValidAddressRange(sBytes + 1, static_cast<const void*>(sBytes), true));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kContract).size());
}

TEST(IsValidAddressRange, NullToNullWhereNullIsNotAllowed_FiresTheInputContractAndIsFalse)
{
    CheckRecorder recorder;
    EXPECT_FALSE(IsValidAddressRange(nullptr, nullptr, false));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kContract).size());
}

TEST(IsValidAddressRange, AddressesAboveTheSignBit_AreComparedWithoutASign)
{
    CheckRecorder recorder;
    const auto low = reinterpret_cast<const void*>(std::uintptr_t{0x1000});
    const auto high = reinterpret_cast<const void*>(~std::uintptr_t{0xFFF});
    EXPECT_TRUE(IsValidAddressRange(low, high, false));
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_TRUE(IsValidAddressRange(high, low, false));
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kContract).size());
}

TEST(OrlAssert, HoldingExpression_IsEvaluatedOnceAndReportsNothing)
{
    CheckRecorder recorder;
    int evaluations = 0;
    ORL_ASSERT(++evaluations == 1);
    EXPECT_EQ(1, evaluations);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(OrlAssert, FailingExpression_IsEvaluatedOnceReportedAndPassed)
{
    CheckRecorder recorder;
    int evaluations = 0;
    const int line = __LINE__ + 1;
    ORL_ASSERT(++evaluations == 2);
    EXPECT_EQ(1, evaluations);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Kind(CheckReport::kAssert)
        .Expression("++evaluations == 2")
        .Message("")
        .File("Tests/Core/DebugTest.cpp")
        .Line(line)
        .Function("TestBody");
}

TEST(OrlAssert, NotIgnored_ReportsOnEveryPass)
{
    CheckRecorder recorder;
    for (int pass = 0; pass < 3; ++pass) {
        ORL_ASSERT(pass > 5);
    }
    EXPECT_EQ(3u, recorder.Reports().size());
}

TEST(OrlAssert, IgnoredForGood_NoLongerEvaluatesItsExpression)
{
    CheckRecorder recorder;
    recorder.mIgnoreForGood = true;
    int evaluations = 0;
    for (int pass = 0; pass < 3; ++pass) {
        ORL_ASSERT(++evaluations < 0);
    }
    EXPECT_EQ(1, evaluations) << "the side effect stops with the checks";
    EXPECT_EQ(1u, recorder.Reports().size());
}

TEST(OrlAssert, IgnoredForGood_LeavesOtherSitesAlone)
{
    CheckRecorder recorder;
    recorder.mIgnoreForGood = true;
    const bool isFine = false;
    ORL_ASSERT(isFine); // first site
    ORL_ASSERT(isFine); // second site
    EXPECT_EQ(2u, recorder.Reports().size());
}

TEST(OrlAssert, StatedIdentity_IsReportedInPlaceOfTheSource)
{
    CheckRecorder recorder;
    const bool isFine = false;
    ORL_ASSERT_AT(isFine, "ClassFactory", 288, "ORL::ClassFactory::Example");
    const int line = __LINE__ + 1;
    ORL_ASSERT_IN(isFine, "ORL::Example::Function");
    ORL_ASSERT_MESSAGE_AT(isFine, "text of the check", "a message", "Source", 12, "Function");
    const auto reports = recorder.Reports();
    ASSERT_EQ(3u, reports.size());
    ExpectReport(reports[0]).Expression("isFine").File("ClassFactory").Line(288).Function("ORL::ClassFactory::Example");
    ExpectReport(reports[1]).File("Tests/Core/DebugTest.cpp").Line(line).Function("ORL::Example::Function");
    ExpectReport(reports[2]).Expression("text of the check").Message("a message");
}

TEST(OrlAssert, MacroInsideTheExpression_IsShownAsItWasWritten)
{
    CheckRecorder recorder;
#define ORL_TEST_ZERO 0
    ORL_ASSERT(ORL_TEST_ZERO != 0);
#undef ORL_TEST_ZERO
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Expression("ORL_TEST_ZERO != 0");
}

TEST(OrlAssert, MessageIsBuiltOnlyWhenTheCheckFails)
{
    CheckRecorder recorder;
    int built = 0;
    const auto message = [&] {
        ++built;
        return "built";
    };
    ORL_ASSERT_MESSAGE_IN(built == 0, message(), "Function");
    EXPECT_EQ(0, built);
    ORL_ASSERT_MESSAGE_IN(built != 0, message(), "Function");
    EXPECT_EQ(1, built);
}

// While the report of a site is being shown, the same site may fail again, on this thread or another.
TEST(OrlAssert, IgnoredInsideTheReportOfTheSameSite_StaysIgnored)
{
    static int sDepth = 0;
    static int sEvaluations = 0;
    static void (*const sSite)() = [] { ORL_ASSERT(++sEvaluations < 0); };
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool& ioIgnore, const char*, const unsigned char*, const char*, long, const char*) {
        if (++sDepth == 1) {
            sSite(); // the inner report is ignored permanently, the outer one only once
        } else {
            ioIgnore = true;
        }
        return false;
    };
    const tvxcore::debug::Dialogs old = tvxcore::debug::InstallDialogs(dialogs);
    sSite();
    sSite();
    tvxcore::debug::InstallDialogs(old);
    EXPECT_EQ(2, sEvaluations);
}

TEST(OrlAssert, FailingOnTwoThreadsAtOnce_ReportsOnBoth)
{
    CheckRecorder recorder;
    std::atomic<int> arrived{0};
    const auto fail = [&] {
        arrived.fetch_add(1);
        while (arrived.load() != 2) {
            std::this_thread::yield();
        }
        ORL_ASSERT(arrived.load() == 0);
    };
    std::thread other(fail);
    fail();
    other.join();
    EXPECT_EQ(2u, recorder.Reports().size());
}

TEST(OrlContract, HoldingExpression_IsEvaluatedOnEveryPass)
{
    CheckRecorder recorder;
    int evaluations = 0;
    for (int pass = 0; pass < 3; ++pass) {
        ORL_INPUT_CONTRACT(++evaluations > 0);
        ORL_OUTPUT_CONTRACT(++evaluations > 0);
    }
    EXPECT_EQ(6, evaluations);
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(OrlContract, Broken_IsReportedThenRaisedAndHasNoIgnoreFlag)
{
    CheckRecorder recorder;
    recorder.mIgnoreForGood = true; // a contract must report again despite this answer
    int evaluations = 0;
    for (int pass = 0; pass < 2; ++pass) {
        ORL_INPUT_CONTRACT(++evaluations < 0);
    }
    EXPECT_EQ(2, evaluations);
    const auto reports = recorder.Reports();
    ASSERT_EQ(4u, reports.size());
    for (std::size_t first : {0u, 2u}) {
        ExpectReport(reports[first])
            .Kind(CheckReport::kContract)
            .Expression("++evaluations < 0")
            .File("Tests/Core/DebugTest.cpp");
        ExpectContractError(reports[first + 1], kInputText, 25);
    }
}

TEST(OrlContract, BrokenOutputContract_RaisesItsOwnError)
{
    CheckRecorder recorder;
    const int line = __LINE__ + 1;
    ORL_OUTPUT_CONTRACT(recorder.mThrow);
    ORL_OUTPUT_CONTRACT_AT(recorder.mThrow, "Source", 7);
    const auto reports = recorder.Reports();
    ASSERT_EQ(4u, reports.size());
    ExpectReport(reports[0]).Line(line);
    ExpectContractError(reports[1], kOutputText, 26);
    ExpectReport(reports[2]).File("Source").Line(7);
}

TEST(OrlContract, ErrorManagerThatThrows_EndsTheFunctionAtTheCheck)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    bool wentOn = false;
    const auto function = [&] {
        ORL_INPUT_CONTRACT(wentOn);
        wentOn = true;
    };
    EXPECT_THROW(function(), CheckRecorder::ContractError);
    EXPECT_FALSE(wentOn);
}
