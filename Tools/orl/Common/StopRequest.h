// The user's request to stop: Ctrl-C, SIGTERM, SIGHUP, and Ctrl-Break on Windows.
#pragma once

namespace orl {

/// After this call these signals end the process at once with kExitStopped. A signal that was ignored at the start
/// stays ignored. For commands that have nothing to clean up.
void ExitOnStop();

/// After this call these signals set a flag instead of ending the process. A signal that was ignored at the start stays
/// ignored.
void ListenForStop();

/// Returns whether one of these signals has arrived. Thread-safe.
bool IsStopRequested();

} // namespace orl
