#include "StopRequest.h"

#include "Failure.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace orl {

namespace {

std::atomic<bool> sIsRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait for a lock");

// On Windows each signal uninstalls its handler; unless reinstalled here, a second Ctrl-C would end the process.
void SetFlag(int inSignal)
{
    std::signal(inSignal, &SetFlag);
    sIsRequested = true;
}

void ExitAtOnce(int)
{
    std::_Exit(kExitStopped);
}

using Handler = void (*)(int);

// nohup and shells rely on an ignored signal staying ignored.
void Handle(int inSignal, Handler inHandler)
{
    if (std::signal(inSignal, inHandler) == SIG_IGN) {
        std::signal(inSignal, SIG_IGN);
    }
}

void HandleAll(Handler inHandler)
{
    Handle(SIGINT, inHandler);
    Handle(SIGTERM, inHandler);
#ifdef SIGHUP // the terminal was closed
    Handle(SIGHUP, inHandler);
#endif
#ifdef SIGBREAK // Ctrl-Break on Windows
    Handle(SIGBREAK, inHandler);
#endif
}

} // namespace

void ExitOnStop()
{
    HandleAll(&ExitAtOnce);
}

void ListenForStop()
{
    HandleAll(&SetFlag);
}

bool IsStopRequested()
{
    return sIsRequested.load();
}

} // namespace orl
