// Checks whose identity is published: crash triage and users' lists of ignored checks are keyed by it. Each room has a
// table of its sites in a file of its own, PublishedSites<Room>Test.cpp:
//
//   const PublishedSite kSites[] = {
//       {__LINE__, PublishedSite::kAssert, "false", "message\r\n", "Source", 12, "ORL::Class::Function", [] { ... }},
//   };
//   TEST(PublishedSites, OfTheRoom_AreReportedAsPublished) { ExpectPublished(kSites); }
#pragma once

#include <CheckRecorder.h>

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
    const char* mMessage; // of an assertion
    const char* mSource;   // null where none is published
    long mLine;            // 0 where none is published
    const char* mFunction; // of an assertion, null where none is published; a contract tells none
    void (*mProvoke)();    // breaks the check once; an exception of the library may leave it
};

/// Breaks the check and looks at its report. A broken contract does not come back to the site, and a failed assertion
/// does.
inline void ExpectPublished(const PublishedSite& inSite)
{
    SCOPED_TRACE("row at line " + std::to_string(inSite.mTableLine));
    CheckRecorder recorder;
    recorder.mThrow = true;
    bool leftByContract = false;
    try {
        inSite.mProvoke();
    } catch (const CheckRecorder::ContractError& error) {
        leftByContract = true;
        EXPECT_EQ(inSite.mKind == PublishedSite::kOutputContract ? 26 : 25, error.mErrorID);
    } catch (const ORL::Exception&) { // what the site's function throws behind its check
    }
    const bool isAssert = inSite.mKind == PublishedSite::kAssert;
    EXPECT_EQ(!isAssert, leftByContract);
    const auto reports = recorder.Reports(isAssert ? CheckReport::kAssert : CheckReport::kContract);
    ASSERT_EQ(1u, reports.size());
    EXPECT_EQ(inSite.mExpression, reports[0].mExpression);
    EXPECT_EQ(inSite.mMessage, reports[0].mMessage);
    if (inSite.mSource != nullptr) {
        EXPECT_EQ(inSite.mSource, reports[0].mFile);
    }
    if (inSite.mLine != 0) {
        EXPECT_EQ(inSite.mLine, reports[0].mLine);
    }
    if (inSite.mFunction != nullptr) {
        EXPECT_EQ(inSite.mFunction, reports[0].mFunction);
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
