// Tests the published identity of checks, the key for crash triage and for users' lists of ignored checks. Each room
// has a table of its sites in the file PublishedSites<Room>Test.cpp:
//
//   const PublishedSite kSites[] = {
//       {__LINE__, PublishedSite::kAssert, "false", "message\r\n", "Source", 12, "ORL::Class::Function", [] { ... }},
//   };
//   TEST(PublishedSites, OfTheRoom_AreReportedAsPublished) { ExpectPublished(kSites); }
#pragma once

#include <CheckRecorder.h>
#include <ExpectReport.h>

#include <ORLException.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

struct PublishedSite
{
    enum Kind { kAssert, kInputContract, kOutputContract };

    int mTableLine;
    Kind mKind;
    const char* mExpression;
    const char* mMessage;  // null except for an assertion
    const char* mSource;   // null if none is published
    long mLine;            // 0 if none is published
    const char* mFunction; // null for a contract, or if none is published
    void (*mFailCheck)();  // makes the check fail once; may then throw an ORL::Exception
};

/// Fails the check and compares its report. A failed contract throws; after a failed assertion execution continues.
inline void ExpectPublished(const PublishedSite& inSite)
{
    SCOPED_TRACE("row at line " + std::to_string(inSite.mTableLine));
    CheckRecorder recorder;
    recorder.mThrow = true;
    bool leftByContract = false;
    try {
        inSite.mFailCheck();
    } catch (const CheckRecorder::ContractError& error) {
        leftByContract = true;
        EXPECT_EQ(inSite.mKind == PublishedSite::kOutputContract ? 26 : 25, error.mErrorID);
    } catch (const ORL::Exception&) { // thrown by the site's function after its check
    }
    const bool isAssert = inSite.mKind == PublishedSite::kAssert;
    EXPECT_EQ(!isAssert, leftByContract);
    const auto reports = recorder.Reports(isAssert ? CheckReport::kAssert : CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Expression(inSite.mExpression).Message(inSite.mMessage);
    if (inSite.mSource != nullptr) {
        ExpectReport(reports[0]).File(inSite.mSource);
    }
    if (inSite.mLine != 0) {
        ExpectReport(reports[0]).Line(inSite.mLine);
    }
    if (inSite.mFunction != nullptr) {
        ExpectReport(reports[0]).Function(inSite.mFunction);
    }
}

template <std::size_t Count>
void ExpectPublished(const PublishedSite (&inSites)[Count])
{
    for (const PublishedSite& site : inSites) {
        ExpectPublished(site);
    }
}

} // namespace ORLTest
