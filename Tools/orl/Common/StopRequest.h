// The user's request to stop: Ctrl-C, SIGTERM, SIGHUP, and Ctrl-Break on Windows.
#pragma once

namespace orl {

/// After this call these signals set a flag instead of terminating the process. A signal that was ignored at the start
/// stays ignored, because nohup and shells rely on it.
void ListenForStop();

/// Returns whether one of these signals has arrived. Thread-safe.
bool IsStopRequested();

} // namespace orl
