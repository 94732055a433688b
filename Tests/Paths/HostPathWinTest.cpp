// Tests names that cannot be converted between UTF-8 and Windows' 16-bit names.
#include <ORLHostPath.h>

#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORL::PathUtils;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

TEST(HostPath, OfANameWithHalfASurrogatePair_FailsRatherThanNameAnotherFile)
{
    for (const char16_t half : {char16_t{0xD83D}, char16_t{0xDE00}}) {
        UTF16String path = Units(u"C:\\a");
        path += static_cast<unsigned short>(half);
        std::string host = "untouched";
        EXPECT_EQ(ORL::kGeneralFailure, ToHostPath(path, host)) << Show(path);
        EXPECT_EQ("untouched", host);
    }
}

TEST(HostPath, FromBytesThatAreNoUTF8_IsEmpty)
{
    for (const char* name : {"C:\\caf\xE9", "C:\\\xC0\xAF", "C:\\\xED\xA0\xBD"}) {
        EXPECT_EQ(UTF16String(), FromHostPath(name)) << name;
    }
}
