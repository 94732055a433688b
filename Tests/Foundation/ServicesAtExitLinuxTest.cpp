// Tests a process that exits without stopping the library. Its threads continue to use every service while the
// static objects of all libraries are destroyed, and afterwards.
//
// Linux only: under Wine 8 a process may spin forever on exit if a terminated thread held the heap lock, and
// most of these services use the heap. HandlesAtExitTest.cpp runs on both platforms.
#include <CleanExit.h>

#include <gtest/gtest.h>

class ServicesAtExit : public testing::TestWithParam<const char*>
{
};

TEST_P(ServicesAtExit, ServiceInUse_KeepsServingUntilTheEnd)
{
    ORLTest::ExpectCleanExit("services_at_exit_host", GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, ServicesAtExit,
                         testing::Values("recycler", "classes", "application", "names", "locale", "errors", "threads",
                                         "queues", "reads", "constants", "all"),
                         [](const testing::TestParamInfo<const char*>& inInfo) { return std::string(inInfo.param); });
