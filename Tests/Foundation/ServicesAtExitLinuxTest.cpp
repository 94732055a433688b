// The end of a process that has not stopped the library finds every service in use on threads, which go on using it while the
// static objects of all libraries are destroyed, and after.
//
// Under Wine 8 a process may spin for ever at its end if a thread that the system has ended held the heap's lock, and most
// of these services use the heap. HandlesAtExitTest.cpp holds on both platforms.
#include <QuietEnd.h>

#include <gtest/gtest.h>

class ServicesAtExit : public testing::TestWithParam<const char*>
{
};

TEST_P(ServicesAtExit, ServiceInUse_KeepsServingUntilTheEnd)
{
    ORLTest::ExpectAQuietEnd("services_at_exit_host", GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, ServicesAtExit,
                         testing::Values("recycler", "classes", "application", "names", "locale", "errors", "threads", "queues",
                                         "reads", "constants", "all"),
                         [](const testing::TestParamInfo<const char*>& inInfo) { return std::string(inInfo.param); });
