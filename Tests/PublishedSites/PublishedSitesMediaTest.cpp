// Tests the published identity of the checks in geometry functions. The hash's check "len < 12" cannot fail: the loop
// before it leaves fewer bytes.
#include "PublishedSites.h"

#include <ORLGeometry.h>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;

namespace {

void SolveNothing()
{
    EXPECT_FALSE(Geometry::SolveNaturalCubicSpline2D(nullptr, nullptr, 0, nullptr));
}

void InterpolateNothing()
{
    EXPECT_FALSE(Geometry::InterpolateNaturalCubicSpline2D(nullptr, nullptr, nullptr, 0, 0, nullptr));
}

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kAssert, "x && y && n && y2", "", "Geometry", 111,
     "ORL::Geometry::SolveNaturalCubicSpline2D", &SolveNothing},
    {__LINE__, PublishedSite::kAssert, "xa && ya && y2a && n && y", "", "Geometry", 182,
     "ORL::Geometry::InterpolateNaturalCubicSpline2D", &InterpolateNothing},
};

} // namespace

TEST(PublishedSites, OfGeometry_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
