// Raises the signals that stop the program in a child of this process.
#include "StopRequest.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// The default action on Windows ends the process with 3.
constexpr int kGoesOn = 40;

int RaiseAndGoOn(int inSignal)
{
    std::raise(inSignal);
    return kGoesOn;
}

} // namespace

TEST(OrlStopDeathTest, ExitOnStop_EndsWith130AtEachSignal)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        EXPECT_EXIT((orl::ExitOnStop(), std::exit(RaiseAndGoOn(signal))), testing::ExitedWithCode(130), "") << signal;
    }
}

TEST(OrlStopDeathTest, ListenForStop_SetsTheFlagAndGoesOn)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        EXPECT_EXIT((orl::ExitOnStop(), orl::ListenForStop(),
                     std::exit(orl::IsStopRequested() ? 4 : RaiseAndGoOn(signal) + (orl::IsStopRequested() ? 0 : 2))),
                    testing::ExitedWithCode(kGoesOn), "")
            << signal;
    }
}

// A second Ctrl-C, too, only asks for the end of the work.
TEST(OrlStopDeathTest, ListenForStop_GoesOnAtEachRepeatedSignal)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        EXPECT_EXIT((orl::ExitOnStop(), orl::ListenForStop(), std::raise(signal), std::raise(signal),
                     std::exit(RaiseAndGoOn(signal) + (orl::IsStopRequested() ? 0 : 2))),
                    testing::ExitedWithCode(kGoesOn), "")
            << signal;
    }
}
