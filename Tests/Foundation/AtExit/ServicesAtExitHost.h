// The platform part of the host that exits while its threads run.
#pragma once

namespace AtExit {

/// Waits until each thread has used every service again. Never returns if the OS has already terminated the threads.
void WaitForThreadProgress();

/// Makes WaitForThreadProgress run again after the static objects of every library have been destroyed, if the OS keeps
/// threads running until then; Windows does not. main calls this function first.
void RunAfterLibraryDestructors();

} // namespace AtExit
