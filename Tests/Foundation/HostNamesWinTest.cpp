// A host with a using-directive for ORL that calls the GetVersion of the OS.
#include <ORLFoundation.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <type_traits>

using namespace ORL;

TEST(HostNames, GetVersionOfTheSystem_IsCalled)
{
    static_assert(std::is_same_v<decltype(GetVersion()), DWORD>);
    EXPECT_NE(0u, GetVersion() & 0xFFu) << "the major version";
}
