// A host with a using-directive for ORL that defines its own GetVersion. On Windows the OS declares such a function.
#include <ORLFoundation.h>

#include <gtest/gtest.h>

using namespace ORL;

unsigned long GetVersion();

unsigned long GetVersion()
{
    return 17;
}

TEST(HostNames, GetVersionOfTheHost_IsCalled)
{
    EXPECT_EQ(17u, GetVersion());
}
