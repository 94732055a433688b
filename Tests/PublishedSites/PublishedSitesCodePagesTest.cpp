// Tests the published identity of the checks in code page conversions.
#include "PublishedSites.h"

#include <System/CodePageConversion.h>
#include <TextHelpers.h>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;
using ORLTest::Units;

namespace {

constexpr unsigned kNoPage = 12345; // no system has this page

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kAssert, "resultLength > 0", "", "StringUtils", 570,
     "ORL::`anonymous-namespace'::To16BitUnicode", [] { Internal::To16BitUnicode("a", kNoPage); }},
    {__LINE__, PublishedSite::kAssert, "resultLength > 0", "", "StringUtils", 610,
     "ORL::`anonymous-namespace'::ToMultiByteWithCodePage",
     [] { Internal::ToMultiByteWithCodePage(Units(u"a"), kNoPage); }},
    {__LINE__, PublishedSite::kAssert, "resultLength > 0", "", "StringUtils", 756,
     "ORL::StringUtils::CodePageMultiByteToUnicode16", [] { Internal::CodePageMultiByteToUnicode16("a", kNoPage); }},
    {__LINE__, PublishedSite::kAssert, "resultLength > 0", "", "StringUtils", 855,
     "ORL::StringUtils::Unicode16ToCodePageMultiByte",
     [] { Internal::Unicode16ToCodePageMultiByte(Units(u"a"), kNoPage); }},
};

} // namespace

TEST(PublishedSites, OfCodePages_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
