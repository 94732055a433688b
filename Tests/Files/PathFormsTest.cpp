#include <ORLPathUtils.h>

#include <gtest/gtest.h>

using namespace ORL;

TEST(PathForms, ToNormalizedPath_OfDrive_EndsInABackslash)
{
    EXPECT_EQ(UTF16String(TVX_UTF16("\\\\?\\C:\\")), PathUtils::ToNormalizedPath(TVX_UTF16("C:")));
}
