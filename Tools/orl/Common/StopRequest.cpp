#include "StopRequest.h"

#include <atomic>
#include <csignal>

namespace orl {

namespace {

std::atomic<bool> sIsRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

void OnSignal(int)
{
    sIsRequested = true;
}

void Listen(int inSignal)
{
    if (std::signal(inSignal, &OnSignal) == SIG_IGN) {
        std::signal(inSignal, SIG_IGN);
    }
}

} // namespace

void ListenForStop()
{
    Listen(SIGINT);
    Listen(SIGTERM);
#ifdef SIGHUP // the terminal was closed
    Listen(SIGHUP);
#endif
#ifdef SIGBREAK // Ctrl-Break on Windows
    Listen(SIGBREAK);
#endif
}

bool IsStopRequested()
{
    return sIsRequested.load();
}

} // namespace orl
